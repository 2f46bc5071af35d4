/// What the tap told its handler, written down, and what the handler answers.
#pragma once

#include "platform/EventTap.h"

#include <condition_variable>
#include <mutex>
#include <string>

namespace velorin {

class Handled final {
public:
    /// Called on the tap's thread.
    std::function<TapAnswer(const KeyEvent&)> answer = [](const KeyEvent&) { return TapAnswer::pass; };

    [[nodiscard]] EventTap::Handler handler() {
        return [this](const KeyEvent& event) {
            const auto decided = answer(event);
            const std::scoped_lock lock(mutex_);
            text_ += (text_.empty() ? "" : " ") + toString(event);
            ++count_;
            changed_.notify_all();
            return decided;
        };
    }

    /// "d96" and "u96" for a key, "f63/800000" for a change of flags. Waits for at least so many in all.
    [[nodiscard]] std::string text(int atLeast = 0) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(5), [&] { return count_ >= atLeast; });
        return text_;
    }
    void clear() {
        const std::scoped_lock lock(mutex_);
        text_.clear();
        count_ = 0;
    }

private:
    static std::string toString(const KeyEvent& event) {
        char text[64];
        const char kind = event.type == KeyEvent::keyDown ? 'd' : event.type == KeyEvent::keyUp ? 'u' : 'f';
        if (kind == 'f')
            std::snprintf(text, sizeof text, "f%d/%llx", event.keyCode,
                          static_cast<unsigned long long>(event.flags));
        else
            std::snprintf(text, sizeof text, "%c%d", kind, event.keyCode);
        return text;
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::string text_;
    int count_ = 0;
};

} // namespace velorin

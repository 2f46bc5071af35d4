/// A gate at which main-thread tasks wait until somebody opens it.
///
///     co_await gate.opened();      // at once while the gate is open
///
/// Whoever waits is resumed within `open`, in the order of arrival. The gate's own end opens it too, so that
/// no task waits for ever: look after the wait whether what you work for is still there.
#pragma once

#include <coroutine>
#include <utility>
#include <vector>

namespace velorin {

class Gate final {
public:
    explicit Gate(bool isOpen) : isOpen_(isOpen) {}
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;
    ~Gate() { open(); }

    [[nodiscard]] bool isOpen() const { return isOpen_; }
    void close() { isOpen_ = false; }

    void open() {
        isOpen_ = true;
        // One that is resumed may close the gate again: it does so for those who come later.
        for (const auto waiting : std::exchange(waiting_, {}))
            waiting.resume();
    }

    [[nodiscard]] auto opened() {
        struct Wait {
            Gate& gate;
            bool await_ready() const noexcept { return gate.isOpen_; }
            void await_suspend(std::coroutine_handle<> handle) { gate.waiting_.push_back(handle); }
            void await_resume() const noexcept {}
        };
        return Wait{*this};
    }

private:
    bool isOpen_;
    std::vector<std::coroutine_handle<>> waiting_;
};

} // namespace velorin

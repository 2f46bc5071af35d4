/// What an application must get, and which edges must arise, of keys that a user presses and releases: by
/// the matcher's decisions alone, with no server in between.
#pragma once

#include "platform/linux/x11/GrabPlan.h"
#include "shortcuts/ShortcutMatcher.h"
#include "shortcuts/TappedKeys.h"
#include "tests/platform/linux/x11/support/TestWindow.h"

namespace velorin::tap {

class Expectation final {
public:
    Expectation(const ShortcutConfiguration& configuration, const KeyboardMap& map);

    void press(int key);
    void release(int key);

    /// In their order since the last call.
    [[nodiscard]] std::vector<TestWindow::Key> takeKeys() { return std::exchange(keys_, {}); }
    [[nodiscard]] std::vector<std::string> takeEdges();
    [[nodiscard]] const std::set<int>& down() const { return down_; }
    [[nodiscard]] long swallowed() const { return swallowed_; }

private:
    [[nodiscard]] bool isTold(int key, std::uint16_t code) const;
    [[nodiscard]] quint64 flags() const;
    [[nodiscard]] int shownModifiers() const;
    ShortcutMatcher::ConsumeDecision tell(std::uint16_t code, bool isPress);

    TapKeys tapKeys_{"rightControl"};
    std::vector<TappedKey> tapped_;
    KeyboardMap map_;
    ShortcutMatcher matcher_;
    std::set<int> down_;  ///< Under the user's fingers.
    std::set<int> told_;  ///< Of these, what the matcher knows of.
    std::set<int> shown_; ///< Of these, what the application knows of.
    std::vector<TestWindow::Key> keys_;
    long swallowed_ = 0;
};

} // namespace velorin::tap

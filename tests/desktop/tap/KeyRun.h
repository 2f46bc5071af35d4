/// One run of keys on their road to the program in front, and what became of them.
#pragma once

#include "DeliveredKeys.h"
#include "Expectation.h"
#include "Stage.h"

#include <array>

namespace velorin::tap {

inline constexpr std::array modifiers{Key::leftShift, Key::rightShift, Key::leftControl, Key::rightControl,
                                      Key::leftAlt,   Key::rightAlt,   Key::leftSuper,   Key::rightSuper};
/// Window managers have no use for them, and editors neither.
inline constexpr std::array bound{Key::scrollLock, Key::pause};
inline constexpr std::array letters{Key::letterB, Key::letterK, Key::letterM, Key::letterJ};

/// The sets of shortcuts that are tried with random keys.
[[nodiscard]] std::vector<ShortcutConfiguration> configurations();

class KeyRun final {
public:
    KeyRun(Stage& stage, TapSubject& subject, Expectation& expectation, DeliveredKeys& delivered)
        : stage_(stage), subject_(subject), expectation_(expectation), delivered_(delivered) {}

    /// Whether all was as it must be; says what was not. The keys end with all of them up.
    [[nodiscard]] bool type(const std::vector<TestWindow::Key>& keys);

private:
    void change(const TestWindow::Key& key);
    [[nodiscard]] bool compareKeys(const std::vector<TestWindow::Key>& pressed);
    [[nodiscard]] bool compareEdges(const std::vector<TestWindow::Key>& pressed);
    [[nodiscard]] bool compareServer();

    Stage& stage_;
    TapSubject& subject_;
    Expectation& expectation_;
    DeliveredKeys& delivered_;
};

} // namespace velorin::tap

/// Delivers text as keys pressed in the user's stead, one character after the other. The clipboard is not
/// touched.
///
///     TypingService typing(keyboard, trust);
///     if (typing.type(text, target)) …    // posted; nothing confirms that the application took it
///
/// Main thread, synchronous.
#pragma once

#include "platform/SyntheticKeyboard.h"
#include "platform/Trust.h"

namespace velorin {

class TypingService final {
public:
    /// The longest text, in characters as people count them.
    static constexpr qsizetype limit = 4000;

    TypingService(SyntheticKeyboard& keyboard, Trust& trust) : keyboard_(keyboard), trust_(trust) {}

    /// True when every character was posted. False with nothing posted, but for one case: a keyboard that
    /// gave up midway, which the log tells.
    [[nodiscard]] bool type(const QString& text, const std::optional<RunningApplication>& target);

private:
    SyntheticKeyboard& keyboard_;
    Trust& trust_;
};

} // namespace velorin

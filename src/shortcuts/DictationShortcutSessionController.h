/// The small machine that turns the edges of the shortcuts into starting and stopping a dictation.
///
/// It is what lets a hold latch: a tap of the toggle shortcut while the hold key is down starts and stops
/// nothing but changes the mode, so the later release of the hold key is ignored and dictation goes on
/// until the next tap of toggle.
///
///     DictationShortcutSessionController session;
///     session.handle(ShortcutEvent::holdActivated);    // {start(hold)}
///     session.handle(ShortcutEvent::toggleActivated);  // {switchedToToggle}
///     session.handle(ShortcutEvent::holdDeactivated);  // {}
///     session.handle(ShortcutEvent::toggleActivated);  // {stop}
///
/// A plain value, for the main thread only.
#pragma once

#include "shortcuts/RecordingTriggerMode.h"
#include "shortcuts/ShortcutEvent.h"

#include <QString>

#include <optional>
#include <vector>

namespace velorin {

struct DictationShortcutAction {
    enum class Kind { start, stop, switchedToToggle };

    Kind kind = Kind::stop;
    std::optional<RecordingTriggerMode> mode; ///< Of a start; none otherwise.

    [[nodiscard]] static constexpr DictationShortcutAction start(RecordingTriggerMode mode) {
        return {Kind::start, mode};
    }
    [[nodiscard]] static constexpr DictationShortcutAction stop() { return {Kind::stop, {}}; }
    [[nodiscard]] static constexpr DictationShortcutAction switchedToToggle() {
        return {Kind::switchedToToggle, {}};
    }

    /// "start(hold)", "start(toggle)", "stop", "switchedToToggle".
    [[nodiscard]] QString description() const;

    bool operator==(const DictationShortcutAction&) const = default;
};

struct DictationShortcutSessionController {
    /// The mode in which a dictation runs or is starting; none while there is no dictation. Whoever stops a
    /// dictation by other means than a shortcut sets it to none.
    std::optional<RecordingTriggerMode> activeMode;

    /// The actions that follow from an edge, none or one. Copying again and the falling edge of toggle never
    /// have any.
    [[nodiscard]] std::vector<DictationShortcutAction> handle(ShortcutEvent event);
};

} // namespace velorin

#include "shortcuts/DictationShortcutSessionController.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {

QString DictationShortcutAction::description() const {
    switch (kind) {
    case Kind::start:
        return u"start(%1)"_s.arg(rawString(mode.value_or(RecordingTriggerMode::hold)));
    case Kind::stop:
        return u"stop"_s;
    case Kind::switchedToToggle:
        return u"switchedToToggle"_s;
    }
    Q_UNREACHABLE();
}

std::vector<DictationShortcutAction> DictationShortcutSessionController::handle(ShortcutEvent event) {
    switch (event) {
    case ShortcutEvent::holdActivated:
        if (activeMode)
            return {};
        activeMode = RecordingTriggerMode::hold;
        return {DictationShortcutAction::start(RecordingTriggerMode::hold)};
    case ShortcutEvent::holdDeactivated:
        if (activeMode != RecordingTriggerMode::hold)
            return {};
        activeMode.reset();
        return {DictationShortcutAction::stop()};
    case ShortcutEvent::toggleActivated: {
        const auto before = activeMode;
        if (before == RecordingTriggerMode::toggle) {
            activeMode.reset();
            return {DictationShortcutAction::stop()};
        }
        activeMode = RecordingTriggerMode::toggle;
        return {before ? DictationShortcutAction::switchedToToggle()
                       : DictationShortcutAction::start(RecordingTriggerMode::toggle)};
    }
    case ShortcutEvent::toggleDeactivated:
    case ShortcutEvent::copyAgainTriggered:
        return {};
    }
    Q_UNREACHABLE();
}

} // namespace velorin

#include "shortcuts/ShortcutEvent.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {

QString name(ShortcutEvent event) {
    switch (event) {
    case ShortcutEvent::holdActivated:
        return u"holdActivated"_s;
    case ShortcutEvent::holdDeactivated:
        return u"holdDeactivated"_s;
    case ShortcutEvent::toggleActivated:
        return u"toggleActivated"_s;
    case ShortcutEvent::toggleDeactivated:
        return u"toggleDeactivated"_s;
    case ShortcutEvent::copyAgainTriggered:
        return u"copyAgainTriggered"_s;
    }
    Q_UNREACHABLE();
}

} // namespace velorin

#include "platform/linux/x11/TypingLimits.h"

#include <QFile>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

bool cutsTypedCharacters(const RunningApplication& application) {
    // Java's windows, whatever their program is called: launchers load the machine into themselves.
    QFile maps(u"/proc/%1/maps"_s.arg(application.processIdentifier));
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("/libjvm.so");
}

bool hasLargeCodePoints(const QStringList& characters) {
    return std::ranges::any_of(characters, [](const QString& character) {
        return std::ranges::any_of(character, [](QChar unit) { return unit.isSurrogate(); });
    });
}

} // namespace velorin

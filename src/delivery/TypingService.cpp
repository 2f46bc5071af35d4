#include "delivery/TypingService.h"

#include "platform/Log.h"
#include "text/Graphemes.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QStringList charactersOf(const QString& text) {
    QStringList characters;
    for (QStringView rest = text; !rest.isEmpty();) {
        const auto first = Graphemes::first(rest);
        characters.append(first.toString());
        rest = rest.sliced(first.size());
    }
    return characters;
}

} // namespace

bool TypingService::type(const QString& text, const std::optional<RunningApplication>& target) {
    if (text.isEmpty())
        return false;
    if (!trust_.isProcessTrusted()) {
        qCDebug(insertLog).noquote() << u"typing: no Accessibility permission"_s;
        return false;
    }
    const auto count = Graphemes::count(text);
    if (count > limit) {
        qCInfo(insertLog).noquote() << u"typing: refusing %1 chars (limit %2)"_s.arg(count).arg(limit);
        return false;
    }
    const auto posted = keyboard_.type(charactersOf(text), target);
    if (!posted) {
        qCDebug(insertLog).noquote() << u"typing: could not create event source"_s;
        return false;
    }
    if (*posted != count) {
        qCDebug(insertLog).noquote() << u"typing: only posted %1/%2 characters"_s.arg(*posted).arg(count);
        return false;
    }
    qCInfo(insertLog).noquote() << u"typing: posted %1 characters"_s.arg(*posted);
    return true;
}

} // namespace velorin

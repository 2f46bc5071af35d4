#include "delivery/ContextProfile.h"

namespace velorin {

using namespace Qt::Literals::StringLiterals;

QString rawString(ContextProfile profile) {
    switch (profile) {
    case ContextProfile::generic:
        return u"generic"_s;
    case ContextProfile::code:
        return u"code"_s;
    case ContextProfile::terminal:
        return u"terminal"_s;
    case ContextProfile::email:
        return u"email"_s;
    case ContextProfile::chat:
        return u"chat"_s;
    case ContextProfile::document:
        return u"document"_s;
    }
    Q_UNREACHABLE();
}

std::optional<ContextProfile> contextProfileFromRawString(QStringView raw) {
    for (const ContextProfile profile : allContextProfiles) {
        if (rawString(profile) == raw)
            return profile;
    }
    return std::nullopt;
}

} // namespace velorin

#include "delivery/ContextMode.h"

#include <QCoreApplication>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

QString translated(const char* text) { return QCoreApplication::translate("ContextMode", text); }

} // namespace

QString label(ContextMode mode) {
    switch (mode) {
    case ContextMode::auto_:
        return translated(QT_TRANSLATE_NOOP("ContextMode", "Auto (recommended)"));
    case ContextMode::generic:
        return translated(QT_TRANSLATE_NOOP("ContextMode", "Generic"));
    case ContextMode::code:
        return translated(QT_TRANSLATE_NOOP("ContextMode", "Code"));
    case ContextMode::terminal:
        return translated(QT_TRANSLATE_NOOP("ContextMode", "Terminal"));
    case ContextMode::email:
        return translated(QT_TRANSLATE_NOOP("ContextMode", "Email"));
    case ContextMode::chat:
        return translated(QT_TRANSLATE_NOOP("ContextMode", "Chat"));
    case ContextMode::document:
        return translated(QT_TRANSLATE_NOOP("ContextMode", "Document"));
    }
    Q_UNREACHABLE();
}

std::optional<ContextProfile> profile(ContextMode mode) {
    if (mode == ContextMode::auto_)
        return std::nullopt;
    return contextProfileFromRawString(rawString(mode));
}

QString rawString(ContextMode mode) {
    switch (mode) {
    case ContextMode::auto_:
        return u"auto"_s;
    case ContextMode::generic:
        return u"generic"_s;
    case ContextMode::code:
        return u"code"_s;
    case ContextMode::terminal:
        return u"terminal"_s;
    case ContextMode::email:
        return u"email"_s;
    case ContextMode::chat:
        return u"chat"_s;
    case ContextMode::document:
        return u"document"_s;
    }
    Q_UNREACHABLE();
}

std::optional<ContextMode> contextModeFromRawString(QStringView raw) {
    for (const ContextMode mode : allContextModes) {
        if (rawString(mode) == raw)
            return mode;
    }
    return std::nullopt;
}

} // namespace velorin

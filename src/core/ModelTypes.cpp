#include "core/ModelTypes.h"

#include <unicode/locid.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

// Each in the order of its enumeration.
constexpr std::array languageNames{"en-US"_L1, "en-GB"_L1, "en-IN"_L1, "es-ES"_L1, "fr-FR"_L1,
                                   "de-DE"_L1, "hi-IN"_L1, "ja-JP"_L1, "zh-CN"_L1};
constexpr std::array cleanModeNames{"off"_L1, "rules"_L1};
constexpr std::array overlayStyleNames{"capsule"_L1, "card"_L1};

template <class Enumeration, std::size_t count>
std::optional<Enumeration> find(const std::array<QLatin1StringView, count>& names, QStringView raw) {
    for (std::size_t index = 0; index < count; ++index)
        if (raw == names.at(index))
            return static_cast<Enumeration>(index);
    return std::nullopt;
}

} // namespace

QString rawString(Language language) { return languageNames.at(static_cast<std::size_t>(language)); }
QString rawString(CleanMode mode) { return cleanModeNames.at(static_cast<std::size_t>(mode)); }
QString rawString(OverlayStyle style) { return overlayStyleNames.at(static_cast<std::size_t>(style)); }

template <>
std::optional<Language> fromRawString(QStringView raw) {
    return find<Language>(languageNames, raw);
}
template <>
std::optional<CleanMode> fromRawString(QStringView raw) {
    return find<CleanMode>(cleanModeNames, raw);
}
template <>
std::optional<OverlayStyle> fromRawString(QStringView raw) {
    return find<OverlayStyle>(overlayStyleNames, raw);
}

QString label(Language language) {
    const QString identifier = rawString(language);
    const icu::Locale locale(identifier.toLatin1().constData());
    icu::UnicodeString name;
    locale.getDisplayName(locale, name);
    return name.isEmpty() ? identifier
                          : QString(reinterpret_cast<const QChar*>(name.getBuffer()), name.length());
}

} // namespace velorin

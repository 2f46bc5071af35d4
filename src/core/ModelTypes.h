/// The small enumerations of the application model, with the raw strings under which they are stored.
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace velorin {

enum class Language {
    englishUS,
    englishGB,
    englishIN,
    spanish,
    french,
    german,
    hindi,
    japanese,
    chineseSimplified
};
enum class CleanMode { off, rules };
enum class OverlayStyle { capsule, card };
enum class OverlayPhase { listening, processing, done, error };
/// What the AI is doing now.
enum class AIProcessing { polish, edit, generate, transcribe };

/// In the order of every picker.
inline constexpr std::array allLanguages{
    Language::englishUS, Language::englishGB, Language::englishIN,
    Language::spanish,   Language::french,    Language::german,
    Language::hindi,     Language::japanese,  Language::chineseSimplified};

/// The raw string of a language is its locale identifier, such as "en-US".
[[nodiscard]] QString rawString(Language language);
[[nodiscard]] QString rawString(CleanMode mode);
[[nodiscard]] QString rawString(OverlayStyle style);

/// Nothing for a text that no case has.
template <class Enumeration>
[[nodiscard]] std::optional<Enumeration> fromRawString(QStringView raw);

/// The language's own name for itself, with its region; the identifier where none is known.
[[nodiscard]] QString label(Language language);

} // namespace velorin

#include "text/Pattern.h"

#include "text/Characters.h"

#include <unicode/regex.h>

namespace velorin {

class Pattern::Compiled final {
public:
    explicit Compiled(std::unique_ptr<icu::RegexPattern> pattern) : pattern_(std::move(pattern)) {}

    /// The matcher refers to the text, which must outlive it.
    [[nodiscard]] std::unique_ptr<icu::RegexMatcher> matcher(const icu::UnicodeString& text) const {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::RegexMatcher> matcher(pattern_->matcher(text, status));
        matcher->setStackLimit(0, status);
        return matcher;
    }

private:
    std::unique_ptr<icu::RegexPattern> pattern_;
};

namespace {

/// ICU's view of the text, without a copy.
icu::UnicodeString aliased(QStringView text) {
    static constexpr char16_t nothing = 0;
    // ICU takes a null pointer for "no string at all".
    const char16_t* units = text.isNull() ? &nothing : text.utf16();
    return icu::UnicodeString(false, icu::ConstChar16Ptr(units), static_cast<int32_t>(text.size()));
}

Pattern::Match matchOf(const icu::RegexMatcher& matcher) {
    Pattern::Match match;
    match.groups.reserve(static_cast<std::size_t>(matcher.groupCount()) + 1);
    for (int32_t group = 0; group <= matcher.groupCount(); ++group) {
        UErrorCode status = U_ZERO_ERROR;
        const int32_t start = matcher.start(group, status);
        const int32_t end = matcher.end(group, status);
        match.groups.push_back(start < 0 ? Pattern::Range{} : Pattern::Range{start, end});
    }
    return match;
}

} // namespace

Pattern::Pattern(QStringView expression) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError where{};
    std::unique_ptr<icu::RegexPattern> pattern(
        icu::RegexPattern::compile(aliased(expression), UREGEX_CASE_INSENSITIVE, where, status));
    if (U_SUCCESS(status))
        compiled_ = std::make_shared<const Compiled>(std::move(pattern));
}

std::optional<Pattern> Pattern::compile(QStringView expression) {
    Pattern pattern(expression);
    return pattern.isValid() ? std::optional(std::move(pattern)) : std::nullopt;
}

std::vector<Pattern::Match> Pattern::matches(QStringView text) const {
    std::vector<Match> found;
    if (!compiled_)
        return found;
    const icu::UnicodeString input = aliased(text);
    const auto matcher = compiled_->matcher(input);
    UErrorCode status = U_ZERO_ERROR;
    while (matcher->find(status) && U_SUCCESS(status))
        found.push_back(matchOf(*matcher));
    return found;
}

std::optional<Pattern::Match> Pattern::firstMatch(QStringView text) const {
    if (!compiled_)
        return std::nullopt;
    const icu::UnicodeString input = aliased(text);
    const auto matcher = compiled_->matcher(input);
    UErrorCode status = U_ZERO_ERROR;
    return matcher->find(status) ? std::optional(matchOf(*matcher)) : std::nullopt;
}

std::optional<Pattern::Match> Pattern::matchAt(QStringView text, qsizetype position) const {
    if (!compiled_)
        return std::nullopt;
    const icu::UnicodeString input = aliased(text);
    const auto matcher = compiled_->matcher(input);
    UErrorCode status = U_ZERO_ERROR;
    return matcher->lookingAt(position, status) ? std::optional(matchOf(*matcher)) : std::nullopt;
}

QString Pattern::replaceAll(const QString& text, QStringView replacement) const {
    if (!compiled_)
        return text;
    const icu::UnicodeString input = aliased(text);
    const auto matcher = compiled_->matcher(input);
    UErrorCode status = U_ZERO_ERROR;
    if (!matcher->find(status))
        return text;
    const icu::UnicodeString form = aliased(replacement);
    icu::UnicodeString result;
    do {
        matcher->appendReplacement(result, form, status);
    } while (U_SUCCESS(status) && matcher->find(status));
    if (U_FAILURE(status))
        return text;
    matcher->appendTail(result);
    return QString(reinterpret_cast<const QChar*>(result.getBuffer()), result.length());
}

QString Pattern::escaped(QStringView literal) {
    QString result;
    result.reserve(literal.size() * 2);
    for (qsizetype i = 0; i < literal.size();) {
        const char32_t c = Characters::codePointAt(literal, i);
        const qsizetype size = Characters::length(c);
        if (!Characters::isLetter(c) && !Characters::isNumber(c))
            result.append(u'\\');
        result.append(literal.sliced(i, size));
        i += size;
    }
    return result;
}

} // namespace velorin

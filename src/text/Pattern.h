/// A regular expression in ICU's dialect, case-insensitive, compiled once.
///
/// It works on the text in place and has no limit on backtracking, in time or memory. A pattern that does
/// not compile finds nothing, so that the pass it belongs to leaves the text as it is; isValid() tells.
///
///     const Pattern address(u"(\\w+)\\s+at\\s+(\\w+)");
///     address.replaceAll(u"jo at acme"_s, u"$1@$2")   // "jo@acme"
///
/// Offsets are UTF-16 offsets. Immutable once made: one pattern serves all threads at once.
#pragma once

#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace velorin {

class Pattern final {
public:
    struct Range {
        qsizetype start = 0;
        qsizetype end = 0;

        [[nodiscard]] qsizetype size() const { return end - start; }
        [[nodiscard]] QStringView in(QStringView text) const { return text.sliced(start, end - start); }
        bool operator==(const Range&) const = default;
    };

    /// A match; groups[0] is the whole of it. A group that took no part is an empty range at 0.
    struct Match {
        std::vector<Range> groups;

        [[nodiscard]] qsizetype start() const { return groups.front().start; }
        [[nodiscard]] qsizetype end() const { return groups.front().end; }
    };

    explicit Pattern(QStringView expression);
    /// For expressions made of what a user typed: nothing if it does not compile.
    [[nodiscard]] static std::optional<Pattern> compile(QStringView expression);

    [[nodiscard]] bool isValid() const { return compiled_ != nullptr; }

    /// All matches from left to right, none overlapping.
    [[nodiscard]] std::vector<Match> matches(QStringView text) const;
    [[nodiscard]] std::optional<Match> firstMatch(QStringView text) const;
    /// The match that begins exactly at the position; look-behind and \b see what stands before it.
    [[nodiscard]] std::optional<Match> matchAt(QStringView text, qsizetype position) const;

    /// Replaces all matches by a template in ICU's syntax ($1, \\ as escape). The text itself, not a copy, if
    /// nothing matches.
    [[nodiscard]] QString replaceAll(const QString& text, QStringView replacement) const;

    /// The text with everything escaped that is neither letter nor digit, so that it matches itself.
    [[nodiscard]] static QString escaped(QStringView literal);

private:
    class Compiled;
    std::shared_ptr<const Compiled> compiled_;
};

} // namespace velorin

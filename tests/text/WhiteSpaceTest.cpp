#include "text/WhiteSpace.h"

#include <unicode/uchar.h>
#include <unicode/uniset.h>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

using WhiteSpace::Set;

constexpr char32_t pastTheLastCodePoint = 0x110000;

TEST(WhiteSpace, WhitespacesAreSpaceSeparatorsAndTheTab) {
    for (char32_t c = 0; c < pastTheLastCodePoint; ++c) {
        const bool expected = c == u'\t' || u_charType(static_cast<UChar32>(c)) == U_SPACE_SEPARATOR;
        ASSERT_EQ(WhiteSpace::isWhitespace(c), expected) << std::hex << static_cast<uint32_t>(c);
    }
}

TEST(WhiteSpace, WithNewlinesTheyAreAllSeparatorsAndTheLineEnds) {
    for (char32_t c = 0; c < pastTheLastCodePoint; ++c) {
        const bool isSeparator = (U_GET_GC_MASK(static_cast<UChar32>(c)) & U_GC_Z_MASK) != 0;
        const bool expected = isSeparator || (c >= 0x9 && c <= 0xD) || c == 0x85;
        ASSERT_EQ(WhiteSpace::isWhitespaceOrNewline(c), expected) << std::hex << static_cast<uint32_t>(c);
    }
}

TEST(WhiteSpace, IsWhatPatternsTakeForWhiteSpace) {
    // The cleanup relies on it: after splitting at one, nothing is left for the other but single spaces.
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeSet set(icu::UnicodeString(u"[\\p{White_Space}]"), status);
    ASSERT_TRUE(U_SUCCESS(status));
    for (char32_t c = 0; c < pastTheLastCodePoint; ++c)
        ASSERT_EQ(WhiteSpace::isWhitespaceOrNewline(c), set.contains(static_cast<UChar32>(c)));
}

TEST(WhiteSpace, TrimmingStopsAtTheFirstOther) {
    EXPECT_EQ(WhiteSpace::trimmed(u" \t\u00A0a b\u3000 "), u"a b");
    EXPECT_EQ(WhiteSpace::trimmed(u" \na\n "), u"\na\n");
    EXPECT_EQ(WhiteSpace::trimmed(u" \n\u2028a\r\n\u0085 ", Set::whitespacesAndNewlines), u"a");
    EXPECT_EQ(WhiteSpace::trimmed(u" \u0301", Set::whitespaces), u"\u0301") << "code point by code point";
    EXPECT_EQ(WhiteSpace::trimmed(u"\u200Ba\u200B"), u"\u200Ba\u200B");
    EXPECT_EQ(WhiteSpace::trimmed(u" \t "), u"");
    EXPECT_EQ(WhiteSpace::trimmed(u""), u"");
    EXPECT_EQ(WhiteSpace::trimmed(QStringView()), u"");
}

TEST(WhiteSpace, SplitsIntoTheNonEmptyPieces) {
    EXPECT_EQ(WhiteSpace::split(u" a\n\nb\u2029c "), (QList<QStringView>{u"a", u"b", u"c"}));
    EXPECT_EQ(WhiteSpace::split(u" a\nb c", Set::whitespaces), (QList<QStringView>{u"a\nb", u"c"}));
    EXPECT_TRUE(WhiteSpace::split(u" \t").isEmpty());
    EXPECT_TRUE(WhiteSpace::split(QStringView()).isEmpty());
}

TEST(WhiteSpace, CollapsesRunsToOneSpace) {
    EXPECT_EQ(WhiteSpace::collapsed(u" a \r\n b\tc "), u"a b c"_s);
    EXPECT_EQ(WhiteSpace::collapsed(u"\n"), QString());
}

} // namespace
} // namespace velorin

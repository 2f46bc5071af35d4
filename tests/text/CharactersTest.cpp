#include "text/Characters.h"

#include <gtest/gtest.h>

namespace velorin {
namespace {

TEST(Characters, KindsFollowTheGeneralCategory) {
    EXPECT_TRUE(Characters::isLetter(U'a') && Characters::isLetter(U'ß') && Characters::isLetter(U'東') &&
                Characters::isLetter(U'\u02B0'));
    EXPECT_FALSE(Characters::isLetter(U'1') || Characters::isLetter(U'\u0301') || Characters::isLetter(U'_'));
    EXPECT_TRUE(Characters::isNumber(U'1') && Characters::isNumber(U'½') && Characters::isNumber(U'Ⅳ'));
    EXPECT_FALSE(Characters::isNumber(U'a'));
    EXPECT_TRUE(Characters::isPunctuation(U'.') && Characters::isPunctuation(U'、') &&
                Characters::isPunctuation(U'_'));
    EXPECT_FALSE(Characters::isPunctuation(U'$') || Characters::isPunctuation(U'+'));
}

TEST(Characters, AlphanumericsAreLettersMarksAndNumbers) {
    EXPECT_TRUE(Characters::isAlphanumeric(U'a') && Characters::isAlphanumeric(U'9') &&
                Characters::isAlphanumeric(U'\u0301') && Characters::isAlphanumeric(U'\uFE0F') &&
                Characters::isAlphanumeric(U'\u0903'));
    EXPECT_FALSE(Characters::isAlphanumeric(U'_') || Characters::isAlphanumeric(U'\'') ||
                 Characters::isAlphanumeric(U'\u200D') || Characters::isAlphanumeric(U'🙂'));
}

TEST(Characters, UnpairedSurrogatesAreCodePointsOfNoKind) {
    const char16_t units[] = {0xDC00, u'a', 0xD800, 0xD83D, 0xDE42};
    const QStringView text(units, 5);
    EXPECT_EQ(Characters::codePointAt(text, 0), char32_t{0xDC00});
    EXPECT_EQ(Characters::codePointAt(text, 2), char32_t{0xD800});
    EXPECT_EQ(Characters::codePointAt(text, 3), U'🙂');
    EXPECT_EQ(Characters::codePointBefore(text, 5), U'🙂');
    EXPECT_EQ(Characters::codePointBefore(text, 3), char32_t{0xD800});
    EXPECT_EQ(Characters::codePointBefore(text, 1), char32_t{0xDC00});
    EXPECT_FALSE(Characters::isAlphanumeric(0xD800) || Characters::isPunctuation(0xDC00));
}

TEST(Characters, ACharacterIsJudgedByItsFirstCodePoint) {
    EXPECT_TRUE(Characters::startsWithLetter(u"e\u0301"));
    EXPECT_FALSE(Characters::startsWithLetter(u"\u0301e"));
    EXPECT_TRUE(Characters::startsWithNumber(u"1\uFE0F\u20E3"));
    EXPECT_FALSE(Characters::startsWithLetter(u"") || Characters::startsWithNumber(u""));
}

} // namespace
} // namespace velorin

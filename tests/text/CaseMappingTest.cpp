#include "text/CaseMapping.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

TEST(CaseMapping, MapsFullyWithoutALocale) {
    EXPECT_EQ(CaseMapping::lower(u"HELLO Ünï I"), u"hello ünï i"_s);
    EXPECT_EQ(CaseMapping::lower(u"ΟΔΟΣ ΟΔΟΣ"), u"οδος οδος"_s) << "final sigma";
    EXPECT_EQ(CaseMapping::lower(u"İ"), u"i\u0307"_s);
    EXPECT_EQ(CaseMapping::upper(u"straße ﬁ i"), u"STRASSE FI I"_s);
    EXPECT_EQ(CaseMapping::upper(u"ŉŉŉŉŉŉŉŉ").size(), 16) << "longer than what was given";
    EXPECT_EQ(CaseMapping::lower(QStringView()), QString());
}

TEST(CaseMapping, KeepsWhatHasNoCase) {
    const char16_t units[] = {0xD800, u'A', 0, 0xDC00};
    const char16_t lower[] = {0xD800, u'a', 0, 0xDC00};
    EXPECT_EQ(CaseMapping::lower(QStringView(units, 4)), QStringView(lower, 4));
}

TEST(CaseMapping, ComparesByFolding) {
    EXPECT_TRUE(CaseMapping::equalIgnoringCase(u"Straße", u"STRASSE"));
    EXPECT_TRUE(CaseMapping::equalIgnoringCase(u"\u212A", u"k"));
    EXPECT_TRUE(CaseMapping::equalIgnoringCase(u"σς", u"ΣΣ"));
    EXPECT_FALSE(CaseMapping::equalIgnoringCase(u"e\u0301", u"é")) << "code points count";
}

TEST(CaseMapping, TellsTheCaseOfACharacter) {
    EXPECT_TRUE(CaseMapping::isLower(u"a") && CaseMapping::isLower(u"ß") && CaseMapping::isLower(u"ª"));
    EXPECT_TRUE(CaseMapping::isLower(u"e\u0301"));
    EXPECT_FALSE(CaseMapping::isLower(u"A") || CaseMapping::isLower(u"1") || CaseMapping::isLower(u"東") ||
                 CaseMapping::isLower(u"ǅ") || CaseMapping::isLower(u""));
    EXPECT_TRUE(CaseMapping::isUpper(u"A") && CaseMapping::isUpper(u"E\u0301") && CaseMapping::isUpper(u"Ⓐ"));
    EXPECT_FALSE(CaseMapping::isUpper(u"a") || CaseMapping::isUpper(u".") || CaseMapping::isUpper(u"ǅ") ||
                 CaseMapping::isUpper(u""));
}

} // namespace
} // namespace velorin

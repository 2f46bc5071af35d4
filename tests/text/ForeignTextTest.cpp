#include "text/ForeignText.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QString named(QStringView text) { return ForeignText::oneLine(text, ForeignText::longestName); }

TEST(ForeignText, LeavesANameAsItIs) {
    EXPECT_EQ(named(u"Mousepad – 日本語 👩‍💻"), u"Mousepad – 日本語 👩‍💻"_s);
    EXPECT_EQ(named(u""), QString());
}

TEST(ForeignText, HasNoControlsAndOneLine) {
    for (char16_t control = 0; control < 0xa0; ++control) {
        if (control >= 0x20 && control < 0x7f)
            continue;
        EXPECT_EQ(named(QString(u"a%1b"_s).arg(QChar(control))), u"a b"_s) << int{control};
    }
    EXPECT_EQ(named(u"a\u2028b\u2029c"), u"a b c"_s);
}

TEST(ForeignText, TurnsNoDirection) {
    EXPECT_EQ(named(u"a\u202eb\u2066c\u2069\u202c"), u"abc"_s);
    EXPECT_EQ(named(u"a\u200fb"), u"a\u200fb"_s) << "a mark turns nothing";
}

TEST(ForeignText, EndsAtTheLimitAndCutsNoCharacterInHalf) {
    EXPECT_EQ(ForeignText::oneLine(QString(16'000'000, u'x'), 5), u"xxxxx"_s);
    EXPECT_EQ(ForeignText::oneLine(u"ab😀", 3), u"ab"_s);
    EXPECT_EQ(ForeignText::oneLine(u"ab😀", 4), u"ab😀"_s);
    EXPECT_EQ(ForeignText::oneLine(u"ab", 0), QString());
}

TEST(ForeignText, ReplacesHalvesOfCharacters) {
    const QString halves = QString(u'a') + QChar(0xd83d) + u'b' + QChar(0xde00);
    EXPECT_EQ(named(halves), u"a\ufffdb\ufffd"_s);
}

} // namespace
} // namespace velorin

#include "delivery/DeliveredText.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

TEST(DeliveredText, LeavesTextAsItIs) {
    for (const auto& text :
         {u"Hello, world."_s, u"one\n\ttwo\n"_s, u"Grüße 日本語 👩‍👩‍👧 नमस्ते"_s,
          u"a\u200db\u200ec\u200fd"_s})
        EXPECT_EQ(DeliveredText::cleared(text), text);
}

TEST(DeliveredText, HasNoControlCharacterButLineFeedAndTab) {
    QString all;
    for (char16_t unit = 0; unit < 0x100; ++unit)
        all += QChar(unit);
    for (const QChar unit : DeliveredText::cleared(all))
        EXPECT_TRUE(unit == u'\n' || unit == u'\t' || unit.category() != QChar::Other_Control);
    EXPECT_EQ(DeliveredText::cleared(u"a\x1b[201~b\u009b"
                                     "1mc\x7f"_s),
              u"a[201~b1mc"_s);
}

TEST(DeliveredText, EndsEachLineWithOneLineFeed) {
    EXPECT_EQ(DeliveredText::cleared(u"a\r\nb\rc\u0085d\n"_s), u"a\nb\nc\nd\n"_s);
}

TEST(DeliveredText, DropsOverridesOfTheDirectionThatTheirLineDoesNotClose) {
    EXPECT_EQ(DeliveredText::cleared(u"a\u202eb"_s), u"ab"_s);
    EXPECT_EQ(DeliveredText::cleared(u"a\u202eb\nc\u202c"_s), u"ab\nc\u202c"_s);
    EXPECT_EQ(DeliveredText::cleared(u"a\u2066\u202eb\u2069c"_s), u"a\u2066b\u2069c"_s);
    for (const auto& closed : {u"a\u202eb\u202cc"_s, u"a\u2067b\u2069c"_s, u"\u2068a\u202ab\u202c\u2069"_s})
        EXPECT_EQ(DeliveredText::cleared(closed), closed);
}

TEST(DeliveredText, OnOneLineRunsNothing) {
    EXPECT_EQ(DeliveredText::oneLine(u" ls -l\n\trm\u2028 -r\r\nx\n"_s), u"ls -l rm -r x"_s);
}

} // namespace
} // namespace velorin

#include "cleanup/Personalization.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

const QUuid someId = QUuid::fromString(u"6f1c52a0-4f1c-4a1c-9a9e-0d8f1b2c3d4e"_s);

TEST(WordReplacement, IsUsableWhenBothTextsHoldMoreThanWhiteSpace) {
    EXPECT_TRUE((WordReplacement{someId, u"a"_s, u"b"_s}.isUsable()));
    EXPECT_TRUE((WordReplacement{someId, u" a "_s, u"\tb\n"_s}.isUsable()));
    EXPECT_FALSE((WordReplacement{someId, u" \n\u2028"_s, u"b"_s}.isUsable()));
    EXPECT_FALSE((WordReplacement{someId, u"a"_s, u"\t\u00A0"_s}.isUsable()));
    EXPECT_TRUE((WordReplacement{someId, u"\u200B"_s, u"b"_s}.isUsable())) << "U+200B is no white space";
}

TEST(WordReplacement, SurvivesItsStoredForm) {
    const QList<WordReplacement> list{{someId, u"jörg \"x\""_s, u"Jörg\n$1"_s},
                                      {QUuid::createUuid(), u" "_s, QString()}};
    EXPECT_EQ(wordReplacementsFromJson(wordReplacementsToJson(list)), list);
}

TEST(WordReplacement, IsStoredUnderExactlyThreeKeys) {
    EXPECT_EQ(wordReplacementsToJson({{someId, u"a"_s, u"b"_s}}),
              R"([{"heard":"a","id":"6F1C52A0-4F1C-4A1C-9A9E-0D8F1B2C3D4E","replacement":"b"}])"_ba);
}

TEST(WordReplacement, IsReadAsAWholeListOrNotAtAll) {
    const QByteArray good = R"({"id":"6f1c52a0-4f1c-4a1c-9a9e-0d8f1b2c3d4e","heard":"a","replacement":"b"})";
    EXPECT_EQ(wordReplacementsFromJson("["_ba + good + "]"_ba)->size(), 1);
    EXPECT_EQ(wordReplacementsFromJson("[]"_ba)->size(), 0);
    for (const char* bad : {
             R"({"id":"6f1c52a0-4f1c-4a1c-9a9e-0d8f1b2c3d4e","heard":"a"})",
             R"({"id":"6f1c52a0-4f1c-4a1c-9a9e-0d8f1b2c3d4e","replacement":"a"})",
             R"({"heard":"a","replacement":"b"})",
             R"({"id":"not-a-uuid","heard":"a","replacement":"b"})",
             R"({"id":"{6f1c52a0-4f1c-4a1c-9a9e-0d8f1b2c3d4e}","heard":"a","replacement":"b"})",
             R"({"id":"6f1c52a0-4f1c-4a1c-9a9e-0d8f1b2c3d4e","heard":1,"replacement":"b"})",
             R"({"id":"6f1c52a0-4f1c-4a1c-9a9e-0d8f1b2c3d4e","heard":"a","replacement":null})",
             R"("text")",
         }) {
        EXPECT_FALSE(wordReplacementsFromJson("["_ba + good + ","_ba + bad + "]"_ba)) << bad;
    }
    EXPECT_FALSE(wordReplacementsFromJson(good));
    EXPECT_FALSE(wordReplacementsFromJson("[{"_ba));
    EXPECT_FALSE(wordReplacementsFromJson(QByteArray()));
}

} // namespace
} // namespace velorin

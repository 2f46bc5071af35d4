#include "delivery/TypingService.h"

#include "platform/Log.h"
#include "tests/support/FakeSyntheticKeyboard.h"
#include "tests/support/FakeTrust.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace velorin {
namespace {

class TypingServiceTest : public testing::Test {
protected:
    TypingServiceTest() { QLoggingCategory::setFilterRules(u"*.debug=true"_s); }
    ~TypingServiceTest() override { QLoggingCategory::setFilterRules({}); }

    FakeSyntheticKeyboard keyboard;
    FakeTrust trust;
    TypingService typing{keyboard, trust};
    LogCapture log;
};

TEST_F(TypingServiceTest, PostsEachCharacterOnce) {
    EXPECT_TRUE(typing.type(u"a\tb\n"_s, std::nullopt));
    EXPECT_THAT(keyboard.typed, ElementsAre(QStringList{u"a"_s, u"\t"_s, u"b"_s, u"\n"_s}));
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: typing: posted 4 characters"_s));
}

TEST_F(TypingServiceTest, KeepsTheCodePointsOfACharacterTogether) {
    EXPECT_TRUE(typing.type(u"🇩🇪e\u0301"_s, std::nullopt));
    EXPECT_THAT(keyboard.typed, ElementsAre(QStringList{u"🇩🇪"_s, u"e\u0301"_s}));
}

TEST_F(TypingServiceTest, DeclinesAnEmptyTextInSilence) {
    EXPECT_FALSE(typing.type({}, std::nullopt));
    EXPECT_THAT(keyboard.typed, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(TypingServiceTest, DeclinesWithoutPermission) {
    trust.processTrusted = false;
    EXPECT_FALSE(typing.type(u"a"_s, std::nullopt));
    EXPECT_THAT(keyboard.typed, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: typing: no Accessibility permission"_s));
}

TEST_F(TypingServiceTest, TakesFourThousandCharactersAndNotOneMore) {
    EXPECT_TRUE(typing.type(QString(4000, u'x'), std::nullopt));
    ASSERT_EQ(keyboard.typed.size(), 1U);
    log.clear();
    EXPECT_FALSE(typing.type(QString(4001, u'x'), std::nullopt));
    EXPECT_EQ(keyboard.typed.size(), 1U);
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: typing: refusing 4001 chars (limit 4000)"_s));
}

TEST_F(TypingServiceTest, CountsTheLimitInCharactersAsPeopleDo) {
    EXPECT_TRUE(typing.type(u"🇩🇪"_s.repeated(4000), std::nullopt));
}

TEST_F(TypingServiceTest, TellsAKeyboardThatDeclines) {
    keyboard.canType = false;
    EXPECT_FALSE(typing.type(u"a"_s, std::nullopt));
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: typing: could not create event source"_s));
}

TEST_F(TypingServiceTest, TellsAKeyboardThatGaveUpMidway) {
    keyboard.postsOnly = 2;
    EXPECT_FALSE(typing.type(u"abc"_s, std::nullopt));
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: typing: only posted 2/3 characters"_s));
}

} // namespace
} // namespace velorin

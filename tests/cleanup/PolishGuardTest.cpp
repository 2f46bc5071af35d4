#include "cleanup/PolishGuard.h"

#include <gtest/gtest.h>

#include <string>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

std::string rejection(const QString& polished, const QString& original) {
    return PolishGuard::rejection(polished, original).value_or(u"accepted"_s).toStdString();
}

/// w1 w2 … wN.
QString words(int count, QChar letter = u'w') {
    QString text;
    for (int i = 1; i <= count; ++i)
        text += u"%1%2 "_s.arg(letter).arg(i);
    return text;
}

TEST(PolishGuard, SplitsWords) {
    EXPECT_EQ(
        PolishGuard::words(u"It's A.B e\u0301-x_2 🙂\uFE0F ΟΔΟΣ"),
        (QStringList{u"it"_s, u"s"_s, u"a"_s, u"b"_s, u"e\u0301"_s, u"x"_s, u"2"_s, u"\uFE0F"_s, u"οδος"_s}));
    EXPECT_TRUE(PolishGuard::words(u" .,!").isEmpty());
}

TEST(PolishGuard, RejectsEmptyReplies) {
    EXPECT_EQ(rejection(u" ... "_s, u"hello"_s), "empty");
    EXPECT_EQ(rejection(u"hello"_s, u"?!"_s), "empty");
}

TEST(PolishGuard, LimitsGrowth) {
    EXPECT_EQ(rejection(words(10) + u"w1 w1 w1 w1 w1 w1"_s, words(10)), "accepted");
    EXPECT_EQ(rejection(words(10) + u"w1 w1 w1 w1 w1 w1 w1"_s, words(10)), "longer");
    EXPECT_EQ(rejection(u"w1 w1 w1 w1"_s, u"w1"_s), "accepted");
    EXPECT_EQ(rejection(u"w1 w1 w1 w1 w1"_s, u"w1"_s), "longer");
}

TEST(PolishGuard, LimitsNewWords) {
    EXPECT_EQ(rejection(words(3) + words(2, u'n'), words(5)), "accepted");
    EXPECT_EQ(rejection(words(2) + words(3, u'n'), words(5)), "new words");
    EXPECT_EQ(rejection(words(13) + words(7, u'n'), words(20)), "accepted");
    EXPECT_EQ(rejection(words(12) + words(8, u'n'), words(20)), "new words");
    EXPECT_EQ(rejection(words(2) + u"n n n"_s, words(5)), "new words") << "each time counts";
}

TEST(PolishGuard, WantsHalfOfTheWordsKept) {
    EXPECT_EQ(rejection(words(5), words(10)), "accepted");
    EXPECT_EQ(rejection(words(4), words(10)), "dropped words");
}

TEST(PolishGuard, RejectsAnswers) {
    EXPECT_EQ(rejection(u"Yes, we can meet."_s, u"can we meet"_s), "answer opener");
    EXPECT_EQ(rejection(u"Yes, we can."_s, u"yes we can meet"_s), "accepted");
    EXPECT_EQ(rejection(u"Sure, surely not"_s, u"surely not"_s), "answer opener");
    EXPECT_EQ(rejection(u"Nothing changed."_s, u"nothing changed"_s), "accepted");
    EXPECT_EQ(rejection(u" Sure"_s, u"sure thing"_s), "accepted");
    EXPECT_EQ(rejection(u"Here's the list"_s, u"the list"_s), "answer opener");
}

TEST(PolishGuard, KeepsQuestionsQuestions) {
    EXPECT_EQ(rejection(u"We can meet."_s, u"can we meet? "_s), "question answered");
    EXPECT_EQ(rejection(u"Can we meet? Soon"_s, u"can we meet?"_s), "accepted");
}

TEST(PolishGuard, RejectsInventedSlots) {
    EXPECT_EQ(rejection(u"Dear [name], hello there"_s, u"dear name hello there"_s), "placeholder");
    EXPECT_EQ(rejection(u"Dear [name], hello there"_s, u"dear [name hello there"_s), "accepted");
    EXPECT_EQ(rejection(u"a] b"_s, u"a b"_s), "accepted");
}

} // namespace
} // namespace velorin

#include "Cleaned.h"

#include "cleanup/Stages.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

using enum ContextProfile;

TEST(RuleCleaner, MakesNothingOfNothing) {
    for (const ContextProfile profile : allContextProfiles) {
        EXPECT_EQ(cleaned(u"", profile), "");
        EXPECT_EQ(cleaned(QStringView(), profile), "");
        EXPECT_EQ(cleaned(u" \n\t\u2028\u3000", profile), "");
    }
}

TEST(RuleCleaner, CapitalizesTheFirstLetterAndNoOther) {
    EXPECT_EQ(cleaned(u"hello world"), "Hello world");
    EXPECT_EQ(cleaned(u"hello. world"), "Hello. world");
    EXPECT_EQ(cleaned(u"ßx"), "SSx") << "upper case may be longer";
    EXPECT_EQ(cleaned(u"e\u0301t"), "E\u0301t");
    EXPECT_EQ(cleaned(u"ⓐ b"), "Ⓐ b") << "lower case, if no letter";
    EXPECT_EQ(cleaned(u"hello world", code), "hello world");
}

TEST(RuleCleaner, KeepsAPeriodThatTheSpeakerEndedWith) {
    EXPECT_EQ(cleaned(u"hello world."), "Hello world.");
    EXPECT_EQ(cleaned(u"um hello world."), "Hello world.");
    EXPECT_EQ(cleaned(u"hello world. um."), "Hello world..") << "nothing was taken away but the filler";
    EXPECT_EQ(cleaned(u"hello, um, you know."), "Hello you know.");
    EXPECT_EQ(cleaned(u"hello um…"), "Hello …");
}

TEST(RuleCleaner, RestoresAnEndingOnlyIfTheRawTextEndedInIt) {
    EXPECT_EQ(cleaned(u"meet at five, no wait, six."), "Meet at six.");
    EXPECT_EQ(cleaned(u"hello, uh,"), "Hello.") << "the comma went with the filler";
    EXPECT_EQ(cleaned(u"hello, uh, "), "Hello") << "white space behind it: no ending";
    EXPECT_EQ(cleaned(u"hello. "), "Hello.");
}

TEST(RuleCleaner, LeavesCodeWithoutAFinalPeriod) {
    EXPECT_EQ(cleaned(u"Git status.", code), "git status");
    EXPECT_EQ(cleaned(u"Git status", generic), "Git status");
    EXPECT_EQ(cleaned(u"ls...", terminal), "ls..");
    EXPECT_EQ(cleaned(u"is it?", code), "is it?");
    EXPECT_EQ(cleaned(u"foo. new line", code), "foo.") << "the period was not final when it was looked at";
}

TEST(RuleCleaner, RepairsFlagsThatWereTypesetAsDashes) {
    EXPECT_EQ(cleaned(u"git commit — amend", terminal), "git commit --amend");
    EXPECT_EQ(cleaned(u"ls –l", terminal), "ls -l");
    EXPECT_EQ(cleaned(u"ls - - all", terminal), "ls --all");
    EXPECT_EQ(cleaned(u"ls —l", generic), "Ls —l");
}

TEST(RuleCleaner, LowersTheNameOfACommandAtTheHead) {
    EXPECT_EQ(cleaned(u"Kubectl get pods", terminal), "kubectl get pods");
    EXPECT_EQ(cleaned(u"LS", terminal), "ls");
    EXPECT_EQ(cleaned(u"Brews well", terminal), "Brews well");
    EXPECT_EQ(cleaned(u"Git, status", code), "Git, status") << "the word takes its comma along";
    EXPECT_EQ(cleaned(u"\u212Aubectl", code), "kubectl") << "a Kelvin sign";
}

TEST(RuleCleaner, RemovesFillers) {
    EXPECT_EQ(cleaned(u"um, so uh I think, er, yes"), "So I think yes");
    EXPECT_EQ(cleaned(u"umbrella hummus"), "Umbrella hummus");
    EXPECT_EQ(cleaned(u"I was, like, tired"), "I was tired");
    EXPECT_EQ(cleaned(u"it is, you know, late"), "It is late");
    EXPECT_EQ(cleaned(u"things like this"), "Things like this");
    EXPECT_EQ(cleaned(u"えーと 行きます"), "行きます");
    EXPECT_EQ(cleaned(u"um\u0301 so"), "Um\u0301 so") << "a mark makes it another word";
}

TEST(RuleCleaner, TidiesPunctuation) {
    EXPECT_EQ(cleaned(u"hello , world ; yes !"), "Hello, world; yes!");
    EXPECT_EQ(cleaned(u", ; : hello"), "Hello");
    EXPECT_EQ(cleaned(u"a,, b ,,, c"), "A, b,, c");
    EXPECT_EQ(cleaned(u"はい、 そう。 です"), "はい、そう。です");
}

TEST(RuleCleaner, SpacesBracketsAndOperatorsInCode) {
    EXPECT_EQ(cleaned(u"foo ( bar ) [ 0 ]", code), "foo (bar) [0]");
    EXPECT_EQ(cleaned(u"a==b&&c", code), "a == b && c");
    EXPECT_EQ(cleaned(u"a!==b", code), "a !== b");
    EXPECT_EQ(cleaned(u"x ==== y", code), "x === = y");
    EXPECT_EQ(cleaned(u"== ==", code), "== ==");
    EXPECT_EQ(cleaned(u"a==b", chat), "A==b");
}

TEST(RuleCleaner, TellsAFinishedEnding) {
    for (const QStringView text : {u".", u"a,", u"a!", u"a?", u"a…", u"a。"})
        EXPECT_TRUE(RuleCleaner::endsPunctuated(text));
    for (const QStringView text : {u"", u"a", u"a. ", u"a;", u"a.\u0301", u"a、"})
        EXPECT_FALSE(RuleCleaner::endsPunctuated(text)) << text.toString().toStdString();
}

TEST(RuleCleaner, TakesAnyUnits) {
    static constexpr char16_t units[] = {u'u', u'm',   u' ', 0xD800, u' ', 0,
                                         u'a', 0xDC00, u' ', 0xE000, u',', u','};
    static constexpr char16_t expected[] = {0xD800, u' ', 0, u'a', 0xDC00, u' ', 0xE000, u','};
    EXPECT_EQ(RuleCleaner::clean(QStringView(units, std::size(units)), {}, generic),
              QStringView(expected, std::size(expected)));
}

} // namespace
} // namespace velorin

#include "cleanup/Stages.h"

#include <gtest/gtest.h>

#include <string>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

std::string corrected(const QString& text) { return RuleCleaner::applyCorrections(text).toStdString(); }

void expectUntouched(const QString& text) { EXPECT_EQ(corrected(text), text.toStdString()); }

TEST(Corrections, ACueAtTheStartOrTheEndIsAWord) {
    expectUntouched(u"no problem"_s);
    expectUntouched(u"we should go no wait"_s);
    expectUntouched(u"we should go, no wait"_s);
    expectUntouched(u"we should go, no wait, 、"_s);
}

TEST(Corrections, ACueCountsOnlyBehindPunctuation) {
    expectUntouched(u"I have no idea"_s);
    expectUntouched(u"I have; no idea"_s);
    expectUntouched(u"tea,\u0301 no coffee"_s);
    EXPECT_EQ(corrected(u"Yes, no problem"_s), "problem");
}

TEST(Corrections, APronounBeginsTheSentenceAnew) {
    EXPECT_EQ(corrected(u"I want tea, actually I want coffee"_s), "I want coffee");
    EXPECT_EQ(corrected(u"We should go home, no wait, we should stay"_s), "we should stay");
    EXPECT_EQ(corrected(u"Go. Go home, sorry it's late"_s), "it's late");
    EXPECT_EQ(corrected(u"Go home, sorry let's stay"_s), "Go home, let's stay") << "\"let\" is no pronoun";
}

TEST(Corrections, TheSameBeginningBeginsTheSentenceAnew) {
    EXPECT_EQ(corrected(u"Call me today, no call me tomorrow"_s), "call me tomorrow");
    EXPECT_EQ(corrected(u"Big red dogs bark, no small and big red"_s), "small and big red");
    EXPECT_EQ(corrected(u"ΑΣ b c, no ας B d e"_s), "ας B d e") << "compared in lower case, sigma and all";
}

TEST(Corrections, AFinishedClauseIsKept) {
    EXPECT_EQ(corrected(u"I did, actually left early"_s), "I did, left early");
    EXPECT_EQ(corrected(u"kaam kar do, no wait phir bhejo"_s), "kaam kar do, phir bhejo");
}

TEST(Corrections, APrepositionReplacesThePhraseThatItBegan) {
    EXPECT_EQ(corrected(u"Meet me at the office, no at the cafe"_s), "Meet me at the cafe");
    EXPECT_EQ(corrected(u"To Rome, no to Paris"_s), "to Paris");
    EXPECT_EQ(corrected(u"go there, no to Paris"_s), "go to Paris") << "no such phrase: the last word";
}

TEST(Corrections, ANumberGoesWithItsUnit) {
    EXPECT_EQ(corrected(u"Call at 5 pm, no wait 6 pm"_s), "Call at 6 pm");
    EXPECT_EQ(corrected(u"Call at five pm, no wait six pm"_s), "Call at five six pm");
}

TEST(Corrections, AShortCorrectionReplacesAWord) {
    EXPECT_EQ(corrected(u"Send it to Bob, sorry Alice"_s), "Send it to Alice");
    EXPECT_EQ(corrected(u"It is red. No blue and green"_s), "It is blue and green");
}

TEST(Corrections, ADeterminerReplacesAPhraseThatIsNoShorter) {
    EXPECT_EQ(corrected(u"I saw the big red dog, actually the small cat"_s), "I saw the small cat");
    EXPECT_EQ(corrected(u"I saw the dog, actually the big red cat"_s), "I saw the dog, the big red cat");
}

TEST(Corrections, AWordOnBothSidesAppearsOnce) {
    EXPECT_EQ(corrected(u"I like tea, actually tea with milk please"_s), "I like tea, with milk please");
}

TEST(Corrections, AreMadeFromTheLastToTheFirst) {
    EXPECT_EQ(corrected(u"at one, no at two, no at three"_s), "at three");
    EXPECT_EQ(corrected(u"red, no green, no blue"_s), "blue");
}

TEST(Corrections, TakeTheOldOffsetsForWhatStandsThereNow) {
    EXPECT_EQ(corrected(u"aa, no b, no it, is so"_s), "so")
        << "the last cue leaves \"it, is so\", where the place of the first one is that of \"is\"";
    EXPECT_EQ(corrected(u"one, no two, no we go"_s), "we go") << "past the end";
}

} // namespace
} // namespace velorin

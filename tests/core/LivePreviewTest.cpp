#include "tests/core/ModelFixture.h"

#include <QSignalSpy>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

class LivePreview : public ModelFixture {};

TEST_F(LivePreview, FollowsVolatileAndFinalResults) {
    start();
    pressHold();
    hear(u"hello"_s, false);
    EXPECT_EQ(model->volatileText(), u"hello"_s);
    EXPECT_EQ(model->cleanedText(), u"Hello"_s);
    hear(u"hello world."_s, true);
    hear(u" second"_s, false);
    EXPECT_EQ(model->finalizedText(), u"hello world."_s);
    EXPECT_EQ(model->cleanedText(), u"Hello world. second"_s);
}

TEST_F(LivePreview, WithoutCleanupAppliesReplacementsAndNothingElse) {
    start();
    model->setCleanMode(CleanMode::off);
    model->addReplacement(u"new york"_s, u"NYC"_s);
    pressHold();
    hear(u"um hello  new york"_s, false);
    EXPECT_EQ(model->cleanedText(), u"um hello  NYC"_s);
}

TEST_F(LivePreview, WithoutCleanupLayoutCommandsStillWork) {
    start();
    model->setCleanMode(CleanMode::off);
    pressHold();
    hear(u"first new line second"_s, false);
    EXPECT_EQ(model->cleanedText(), u"First\nSecond"_s);
    model->setContextMode(ContextMode::code);
    model->contextModeChanged();
    EXPECT_EQ(model->cleanedText(), u"first\nsecond"_s);
}

TEST_F(LivePreview, AFixedContextModeTakesEffectAtOnceAndAutoAtTheNextStart) {
    start();
    model->setContextMode(ContextMode::terminal);
    model->contextModeChanged();
    EXPECT_EQ(model->activeProfile(), ContextProfile::terminal);
    EXPECT_TRUE(model->hasContext());
    EXPECT_EQ(defaults.values[u"contextMode"_s].toString(), u"terminal"_s);
    model->setContextMode(ContextMode::auto_);
    model->contextModeChanged();
    EXPECT_EQ(model->activeProfile(), ContextProfile::terminal);
    EXPECT_FALSE(model->activeProfileWasDetected());
}

TEST_F(LivePreview, AnAddedReplacementShowsAtOnce) {
    start();
    pressHold();
    hear(u"call me zoe"_s, false);
    EXPECT_TRUE(model->addReplacement(u"zoe"_s, u"Zoë"_s));
    EXPECT_EQ(model->cleanedText(), u"Call me Zoë"_s);
    model->removeReplacement(model->wordReplacements().first().id);
    EXPECT_EQ(model->cleanedText(), u"Call me zoe"_s);
    EXPECT_FALSE(model->addReplacement(u" "_s, u"x"_s));
    EXPECT_TRUE(model->wordReplacements().isEmpty());
}

TEST_F(LivePreview, LevelsRiseAtOnceAndFallByStepsAndSeventyTwoAreKept) {
    start();
    model->pushLevel(1);
    EXPECT_FLOAT_EQ(model->level(), 1);
    model->pushLevel(0);
    EXPECT_FLOAT_EQ(model->level(), 0.72F);
    for (int i = 0; i < 100; ++i)
        model->pushLevel(0.5F);
    EXPECT_EQ(model->levels().size(), 72);
    EXPECT_FLOAT_EQ(model->levels().last(), std::pow(0.5F, 0.65F));
}

TEST_F(LivePreview, LevelsOfTheAudioThreadArriveOnTheMainThread) {
    start();
    pressHold();
    audioInput.block(someSound());
    EXPECT_TRUE(model->levels().isEmpty());
    settle();
    EXPECT_EQ(model->levels().size(), 1);
}

TEST_F(LivePreview, SoundThatStillComesWhenTheModelHasGoneHarmsNothing) {
    start();
    pressHold();
    const auto block = audioInput.block;
    endModel();
    block(someSound());
    settle();
}

TEST_F(LivePreview, SilenceNeverQuiteReachesZero) {
    start();
    model->pushLevel(1);
    for (int i = 0; i < 50; ++i)
        model->pushLevel(0);
    EXPECT_GT(model->level(), 0);
    pressHold();
    EXPECT_EQ(model->level(), 0);
}

TEST_F(LivePreview, AnAssignmentOfTheSameValueNotifiesNobody) {
    start();
    QSignalSpy spy(model.get(), &AppState::statusChanged);
    model->setStatus(u"Idle"_s);
    EXPECT_EQ(spy.size(), 0);
    model->setStatus(u"Error"_s);
    EXPECT_EQ(spy.size(), 1);
}

TEST_F(LivePreview, AChangeOfACollectionInPlaceNotifiesAlways) {
    start();
    QSignalSpy spy(model.get(), &AppState::customVocabularyChanged);
    model->removeVocabulary(u"not listed"_s);
    EXPECT_EQ(spy.size(), 1);
}

} // namespace
} // namespace velorin

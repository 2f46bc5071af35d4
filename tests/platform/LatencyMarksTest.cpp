#include "platform/LatencyMarks.h"

#include <gmock/gmock.h>

using namespace std::chrono_literals;

namespace velorin {
namespace {

TEST(LatencyMarks, KeepsTheLastHundredDictations) {
    LatencyMarks marks;
    for (int i = 0; i < 130; ++i)
        marks.begin(LatencyMarks::Time(std::chrono::seconds(i)));
    ASSERT_EQ(marks.dictations().size(), 100U);
    EXPECT_EQ(marks.dictations().front().at(Stage::keyDown), LatencyMarks::Time(30s));
}

TEST(LatencyMarks, TakesTheFirstSampleAndPreviewAndTheLastOfWhatFollowsTheKey) {
    LatencyMarks marks;
    marks.begin();
    for (const auto time : {1s, 2s})
        for (const Stage stage : {Stage::firstSample, Stage::firstPreview, Stage::keyUp, Stage::lastFinal})
            marks.mark(stage, LatencyMarks::Time(time));
    const auto dictation = marks.dictations().back();
    EXPECT_EQ(dictation.at(Stage::firstSample), LatencyMarks::Time(1s));
    EXPECT_EQ(dictation.at(Stage::firstPreview), LatencyMarks::Time(1s));
    EXPECT_EQ(dictation.at(Stage::keyUp), LatencyMarks::Time(2s));
    EXPECT_EQ(dictation.at(Stage::lastFinal), LatencyMarks::Time(2s));
    EXPECT_EQ(dictation.at(Stage::delivered), std::nullopt);
}

TEST(LatencyMarks, WithoutADictationAMarkIsNothing) {
    LatencyMarks marks;
    marks.mark(Stage::firstSample);
    EXPECT_TRUE(marks.dictations().empty());
}

} // namespace
} // namespace velorin

#include "speech/AudioLevel.h"

#include <gmock/gmock.h>

#include <limits>

namespace velorin {

namespace {

AudioBuffer floats(std::vector<float> samples, int channels = 1) {
    return {{48000, channels, AudioFormat::Samples::float32}, std::move(samples), 0};
}

AudioBuffer integers(std::vector<qint16> samples) {
    return {{48000, 1, AudioFormat::Samples::int16}, std::move(samples), 0};
}

} // namespace

TEST(AudioLevel, IsZeroForSilenceAndForNothing) {
    EXPECT_EQ(audioLevel(floats(std::vector<float>(64, 0.0F))), 0);
    EXPECT_EQ(audioLevel(floats({})), 0);
    EXPECT_EQ(audioLevel(integers({0, 0, 0})), 0);
}

TEST(AudioLevel, IsOneAtFullScale) {
    EXPECT_EQ(audioLevel(floats({1, -1, 1, -1})), 1);
    EXPECT_EQ(audioLevel(floats({3, -3})), 1);
    EXPECT_NEAR(audioLevel(integers({-32768, -32768})), 1, 1e-6);
}

TEST(AudioLevel, SpansSixtyDecibels) {
    EXPECT_NEAR(audioLevel(floats({0.1F})), 40.0 / 60, 1e-6);
    EXPECT_NEAR(audioLevel(floats({0.01F})), 20.0 / 60, 1e-6);
    EXPECT_NEAR(audioLevel(floats({0.001F})), 0, 1e-6);
    EXPECT_EQ(audioLevel(floats({0.0001F})), 0);
    EXPECT_NEAR(audioLevel(integers({4373})), 0.7084431807950463, 1e-4);
}

TEST(AudioLevel, ReadsTheFirstChannelOnly) {
    EXPECT_EQ(audioLevel(floats({0, 1, 0, 1}, 2)), 0);
    EXPECT_EQ(audioLevel(floats({1, 0, 1, 0}, 2)), 1);
}

TEST(AudioLevel, IsZeroForSamplesThatCannotBeRead) {
    EXPECT_EQ(audioLevel({{48000, 1, AudioFormat::Samples::other}, {}, 64}), 0);
}

TEST(AudioLevel, IsZeroForSamplesThatAreNoNumbers) {
    EXPECT_EQ(audioLevel(floats({std::numeric_limits<float>::quiet_NaN()})), 0);
}

} // namespace velorin

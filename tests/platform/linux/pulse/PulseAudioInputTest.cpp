#include "platform/linux/pulse/PulseAudioInput.h"
#include "tests/support/SoundServer.h"
#include "tests/support/WaitUntil.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <mutex>
#include <numbers>

namespace velorin {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

std::vector<float> tone(std::chrono::milliseconds length) {
    std::vector<float> samples(static_cast<std::size_t>(16 * length.count()));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = 0.5F * std::sin(static_cast<float>(i) * 2 * std::numbers::pi_v<float> * 440 / 16000);
    return samples;
}

} // namespace

struct PulseAudioInputTest : testing::Test {
    SoundServer server;
    PulseAudioInput input;
    std::mutex mutex;
    std::vector<quint32> frames;
    std::atomic<std::size_t> framesInAll = 0;
    std::atomic<std::size_t> loudFrames = 0;
    std::vector<QString> failures;
    AudioFormat format;

    tl::expected<void, QString> start() {
        format = QCoro::waitFor(input.inputFormat());
        const auto block = [this](const AudioBuffer& buffer) {
            const std::scoped_lock lock(mutex);
            frames.push_back(buffer.frames());
            framesInAll += buffer.frames();
            const auto& samples = std::get<std::vector<float>>(buffer.samples);
            for (std::size_t i = 0; i < samples.size(); i += static_cast<std::size_t>(format.channels))
                loudFrames += std::abs(samples[i]) > 0.01F ? 1 : 0;
        };
        return QCoro::waitFor(
            input.start(format, 1024, block, [this](const QString& m) { failures.push_back(m); }));
    }

    void stop() { QCoro::waitFor(input.stop()); }
};

TEST_F(PulseAudioInputTest, TellsTheSourcesOwnFormat) {
    EXPECT_EQ(QCoro::waitFor(input.inputFormat()), (AudioFormat{44100, 2, AudioFormat::Samples::float32}));
}

TEST_F(PulseAudioInputTest, HandsOutWholeBuffersAndAtTheEndTheRest) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 5 * 1024; }));
    stop();
    ASSERT_GT(frames.size(), 5U);
    EXPECT_TRUE(std::all_of(frames.begin(), frames.end() - 1, [](quint32 count) { return count == 1024; }));
    EXPECT_LE(frames.back(), 1024U);
}

TEST_F(PulseAudioInputTest, RecordsOnlyBetweenStartAndStop) {
    (void)QCoro::waitFor(input.inputFormat());
    EXPECT_FALSE(server.isRecordedFrom());
    ASSERT_TRUE(start());
    EXPECT_TRUE(server.isRecordedFrom());
    stop();
    EXPECT_TRUE(waitUntil([&] { return !server.isRecordedFrom(); }));
    const std::size_t atTheEnd = framesInAll;
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > atTheEnd; }));
    stop();
}

TEST_F(PulseAudioInputTest, HasTheFirstSoundSoon) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 0; }));
    stop();
    framesInAll = 0;
    const auto before = Clock::now();
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 0; }));
    // Our share is 50 ms; the sanitizers and a busy machine have the rest.
    EXPECT_LT(Clock::now() - before, 250ms);
    stop();
}

TEST_F(PulseAudioInputTest, HearsWhatIsPlayedToTheEnd) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 0; }));
    server.play(tone(500ms));
    ASSERT_TRUE(waitUntil([&] { return loudFrames > 15000; }));
    const auto before = Clock::now();
    stop();
    EXPECT_LT(Clock::now() - before, 150ms);
    EXPECT_TRUE(failures.empty());
}

TEST_F(PulseAudioInputTest, TakesAnyRateAndAnyNumberOfChannels) {
    for (const auto& [rate, channels] : {std::pair{8000, 1}, {192000, 8}, {16000, 7}, {48000, 3}}) {
        server.kill();
        SoundServer other("rate=" + std::to_string(rate) + " channels=" + std::to_string(channels));
        ASSERT_TRUE(start()) << rate;
        EXPECT_EQ(format.sampleRate, rate);
        EXPECT_EQ(format.channels, channels);
        const std::size_t before = framesInAll;
        EXPECT_TRUE(waitUntil([&] { return framesInAll > before; }));
        stop();
    }
}

TEST_F(PulseAudioInputTest, TakesNoMonitorForAMicrophone) {
    ASSERT_TRUE(server.control("set-default-source voice.monitor"));
    EXPECT_EQ(QCoro::waitFor(input.inputFormat()).channels, 0);
    ASSERT_TRUE(server.control("set-default-source microphone"));
    EXPECT_EQ(QCoro::waitFor(input.inputFormat()).channels, 2);
}

TEST_F(PulseAudioInputTest, KnowsThatThereIsNoMicrophone) {
    ASSERT_TRUE(server.control("unload-module module-remap-source"));
    EXPECT_EQ(QCoro::waitFor(input.inputFormat()).channels, 0);
}

TEST_F(PulseAudioInputTest, SaysWhenTheMicrophoneIsUnplugged) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 0; }));
    ASSERT_TRUE(server.control("unload-module module-remap-source"));
    ASSERT_TRUE(waitUntil([&] { return !failures.empty(); }));
    EXPECT_EQ(failures[0], QStringLiteral("The microphone was unplugged."));
    stop();
    EXPECT_EQ(failures.size(), 1U);
}

TEST_F(PulseAudioInputTest, SaysWhenTheRescuedStreamWouldHearAMonitor) {
    ASSERT_TRUE(server.control("load-module module-rescue-streams"));
    ASSERT_TRUE(start());
    ASSERT_TRUE(server.control("unload-module module-remap-source"));
    ASSERT_TRUE(waitUntil([&] { return !failures.empty(); }));
    EXPECT_EQ(failures[0], QStringLiteral("The microphone was unplugged."));
    stop();
}

TEST_F(PulseAudioInputTest, SaysWhenTheServerDiesAndConnectsToTheNextOne) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 0; }));
    server.kill();
    ASSERT_TRUE(waitUntil([&] { return !failures.empty(); }));
    EXPECT_EQ(failures[0], QStringLiteral("The sound server went away."));
    stop();
    EXPECT_EQ(QCoro::waitFor(input.inputFormat()).channels, 0);
    server.start();
    EXPECT_TRUE(start());
    stop();
}

TEST_F(PulseAudioInputTest, SurvivesARestartOfTheServerBetweenRecordings) {
    ASSERT_TRUE(start());
    stop();
    server.kill();
    server.start();
    EXPECT_TRUE(start());
    stop();
    EXPECT_TRUE(failures.empty());
}

TEST_F(PulseAudioInputTest, WaitsForASilentServerOnlySoLong) {
    ASSERT_TRUE(start());
    server.freeze();
    auto before = Clock::now();
    stop();
    EXPECT_LT(Clock::now() - before, 500ms);
    before = Clock::now();
    EXPECT_EQ(QCoro::waitFor(input.inputFormat()).channels, 0);
    EXPECT_LT(Clock::now() - before, 3s);
    server.thaw();
    EXPECT_TRUE(start());
    stop();
}

TEST_F(PulseAudioInputTest, HearsSilenceFromAMutedMicrophone) {
    ASSERT_TRUE(server.control("set-source-mute microphone 1"));
    ASSERT_TRUE(start());
    server.play(tone(300ms));
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 44100 / 2; }));
    stop();
    EXPECT_EQ(loudFrames, 0U);
}

TEST_F(PulseAudioInputTest, AllowsAStopWithoutAStart) {
    stop();
    ASSERT_TRUE(start());
    ASSERT_TRUE(start());
    stop();
    stop();
}

} // namespace velorin

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

/// What is heard from one server.
struct Recording {
    explicit Recording(SoundServer::Kind kind) : server("", kind) {}

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

/// What holds of every server that speaks PulseAudio's language.
struct PulseAudioInputTest : testing::TestWithParam<SoundServer::Kind>, Recording {
    PulseAudioInputTest() : Recording(GetParam()) {}

    [[nodiscard]] bool addAMicrophone(const std::string& name) {
        return server.control("load-module module-null-sink sink_name=sink_" + name) &&
               server.control("load-module module-remap-source channels=1 source_name=" + name +
                              " master=sink_" + name + ".monitor");
    }

    /// PipeWire answers before it has done so.
    [[nodiscard]] bool choose(const std::string& name) {
        return server.control("set-default-source " + name) &&
               waitUntil([&] { return server.answer("get-default-source") == name + "\n"; });
    }
};

/// What can be had of PulseAudio itself only.
struct PulseAudioServerTest : testing::Test, Recording {
    PulseAudioServerTest() : Recording(SoundServer::Kind::pulseAudio) {}
};

INSTANTIATE_TEST_SUITE_P(Of, PulseAudioInputTest,
                         testing::Values(SoundServer::Kind::pulseAudio, SoundServer::Kind::pipeWire),
                         [](const auto& kind) {
                             return kind.param == SoundServer::Kind::pulseAudio ? "PulseAudio" : "PipeWire";
                         });

TEST_P(PulseAudioInputTest, TellsTheSourcesOwnFormat) {
    const double rate = GetParam() == SoundServer::Kind::pulseAudio ? 44100 : 48000;
    EXPECT_EQ(QCoro::waitFor(input.inputFormat()), (AudioFormat{rate, 2, AudioFormat::Samples::float32}));
}

TEST_P(PulseAudioInputTest, HandsOutWholeBuffersAndAtTheEndTheRest) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 5 * 1024; }));
    stop();
    ASSERT_GT(frames.size(), 5U);
    EXPECT_TRUE(std::all_of(frames.begin(), frames.end() - 1, [](quint32 count) { return count == 1024; }));
    EXPECT_LE(frames.back(), 1024U);
}

TEST_P(PulseAudioInputTest, RecordsOnlyBetweenStartAndStop) {
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

TEST_P(PulseAudioInputTest, HasTheFirstSoundSoon) {
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

TEST_P(PulseAudioInputTest, HearsWhatIsPlayedToTheEnd) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 0; }));
    server.play(tone(500ms));
    ASSERT_TRUE(waitUntil([&] { return loudFrames > 15000; }));
    const auto before = Clock::now();
    stop();
    EXPECT_LT(Clock::now() - before, 150ms);
    EXPECT_TRUE(failures.empty());
}

TEST_F(PulseAudioServerTest, TakesAnyRateAndAnyNumberOfChannels) {
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

TEST_P(PulseAudioInputTest, TakesNoMonitorForAMicrophone) {
    ASSERT_TRUE(choose("voice.monitor"));
    EXPECT_EQ(QCoro::waitFor(input.inputFormat()).channels, 0);
    ASSERT_TRUE(choose("microphone"));
    EXPECT_EQ(QCoro::waitFor(input.inputFormat()).channels, 2);
}

TEST_P(PulseAudioInputTest, KnowsThatThereIsNoMicrophone) {
    ASSERT_TRUE(server.control("unload-module module-remap-source"));
    EXPECT_EQ(QCoro::waitFor(input.inputFormat()).channels, 0);
}

TEST_P(PulseAudioInputTest, SaysWhenTheMicrophoneIsUnplugged) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 0; }));
    ASSERT_TRUE(server.control("unload-module module-remap-source"));
    ASSERT_TRUE(waitUntil([&] { return !failures.empty(); }));
    EXPECT_EQ(failures[0], QStringLiteral("The microphone was unplugged."));
    stop();
    EXPECT_EQ(failures.size(), 1U);
}

TEST_F(PulseAudioServerTest, SaysWhenTheRescuedStreamWouldHearAMonitor) {
    ASSERT_TRUE(server.control("load-module module-rescue-streams"));
    ASSERT_TRUE(start());
    ASSERT_TRUE(server.control("unload-module module-remap-source"));
    ASSERT_TRUE(waitUntil([&] { return !failures.empty(); }));
    EXPECT_EQ(failures[0], QStringLiteral("The microphone was unplugged."));
    stop();
}

TEST_P(PulseAudioInputTest, SaysWhenTheServerDiesAndConnectsToTheNextOne) {
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

TEST_P(PulseAudioInputTest, SurvivesARestartOfTheServerBetweenRecordings) {
    ASSERT_TRUE(start());
    stop();
    server.kill();
    server.start();
    EXPECT_TRUE(start());
    stop();
    EXPECT_TRUE(failures.empty());
}

TEST_P(PulseAudioInputTest, WaitsForASilentServerOnlySoLong) {
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

TEST_P(PulseAudioInputTest, HearsSilenceFromAMutedMicrophone) {
    ASSERT_TRUE(server.control("set-source-mute microphone 1"));
    ASSERT_TRUE(start());
    server.play(tone(300ms));
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 44100 / 2; }));
    stop();
    EXPECT_EQ(loudFrames, 0U);
}

TEST_P(PulseAudioInputTest, AllowsAStopWithoutAStart) {
    stop();
    ASSERT_TRUE(start());
    ASSERT_TRUE(start());
    stop();
    stop();
}

TEST_P(PulseAudioInputTest, KeepsItsConnectionBetweenRecordings) {
    const std::string ours = "list short clients | grep pulse-test";
    ASSERT_TRUE(start());
    stop();
    const std::string before = server.answer(ours);
    EXPECT_EQ(std::count(before.begin(), before.end(), '\n'), 1) << before;
    for (int recording = 0; recording < 3; ++recording) {
        ASSERT_TRUE(start());
        stop();
    }
    EXPECT_EQ(server.answer(ours), before);
}

TEST_P(PulseAudioInputTest, TakesTheDefaultSourceOfTheMoment) {
    ASSERT_TRUE(addAMicrophone("second"));
    ASSERT_TRUE(start());
    EXPECT_EQ(format.channels, 2);
    stop();
    ASSERT_TRUE(choose("second"));
    ASSERT_TRUE(start());
    EXPECT_EQ(format.channels, 1);
    server.play(tone(300ms));
    const std::size_t before = framesInAll;
    ASSERT_TRUE(waitUntil([&] { return framesInAll > before + 44100 / 2; }));
    stop();
    // Nobody speaks into the second one.
    EXPECT_EQ(loudFrames, 0U);
}

/// Whoever chooses another microphone in the desktop's mixer means it at once.
TEST_P(PulseAudioInputTest, FollowsTheDefaultSourceThatChangesMeanwhile) {
    ASSERT_TRUE(addAMicrophone("second"));
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitUntil([&] { return framesInAll > 0; }));
    ASSERT_TRUE(choose("second"));
    server.play(tone(500ms), "sink_second");
    EXPECT_TRUE(waitUntil([&] { return loudFrames > 8000; }));
    stop();
    EXPECT_TRUE(failures.empty());
}

} // namespace velorin

#include "platform/linux/pulse/PulseCapture.h"
#include "platform/linux/recognition/RecognitionWorker.h"
#include "tests/platform/linux/recognition/FakeRecogniser.h"
#include "tests/support/SoundServer.h"

#include <gmock/gmock.h>

#include <future>

namespace velorin {

namespace {

constexpr std::chrono::seconds deadline{30};

/// Runs on the audio thread, waits here.
template <typename Answer>
Answer on(PulseLoop& loop, std::function<Answer()> question) {
    std::promise<Answer> answer;
    auto answered = answer.get_future();
    loop.post([&] { answer.set_value(question()); });
    EXPECT_EQ(answered.wait_for(deadline), std::future_status::ready);
    return answered.get();
}

} // namespace

/// The whole road of the sound, from the server to the recogniser's thread, without Qt: what ThreadSanitizer
/// can judge.
TEST(SoundRoad, CarriesTheSoundFromTheServerToTheRecogniser) {
    SoundServer server("rate=16000 channels=1");
    PulseLoop loop;
    PulseCapture capture(loop);
    RecognitionWorker worker;
    const auto load = [] {
        return LoadedModel{std::make_unique<FakeVoiceActivity>(), std::make_unique<FakeDecoder>()};
    };
    for (int dictation = 0; dictation < 3; ++dictation) {
        const auto stream = std::make_shared<SampleStream>();
        std::atomic<std::size_t> heard = 0;
        std::atomic<int> results = 0;
        std::promise<RecognitionWorker::Outcome> ended;
        auto end = ended.get_future();
        worker.begin({"model",
                      load,
                      stream,
                      {},
                      {},
                      [&](const std::string&, bool) { ++results; },
                      [&](RecognitionWorker::Outcome outcome) { ended.set_value(outcome); }});
        const std::function<bool()> start = [&] {
            const auto block = [stream, &heard](std::span<const float> samples) {
                heard += samples.size();
                stream->write({samples.begin(), samples.end()});
            };
            return capture.findMicrophone() && capture.start(16000, 1, 1024, block, nullptr);
        };
        ASSERT_TRUE(on(loop, start));
        server.play(std::vector<float>(16000, 0.5F));
        const auto until = std::chrono::steady_clock::now() + deadline;
        while (results == 0 && std::chrono::steady_clock::now() < until)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_GT(results, 0);
        const std::function<std::size_t()> stop = [&] {
            capture.stop();
            return capture.statistics().lostFrames;
        };
        EXPECT_EQ(on(loop, stop), 0U);
        stream->finish();
        ASSERT_EQ(end.wait_for(deadline), std::future_status::ready);
        EXPECT_EQ(end.get(), RecognitionWorker::Outcome::done);
        EXPECT_GT(heard, 1024U);
    }
    loop.end();
}

} // namespace velorin

#include "platform/linux/recognition/RecognitionWorker.h"
#include "tests/platform/linux/recognition/FakeRecogniser.h"

#include <gmock/gmock.h>

#include <future>

namespace velorin {

using testing::ElementsAre;

namespace {

constexpr std::chrono::seconds deadline{20};

struct Dictation {
    std::shared_ptr<SampleStream> stream = std::make_shared<SampleStream>();
    std::vector<std::string> finals; ///< The worker's until `end` is there.
    std::promise<RecognitionWorker::Outcome> ended;
    std::future<RecognitionWorker::Outcome> end = ended.get_future();

    RecognitionWorker::Job job(const std::string& model, RecognitionWorker::Load load) {
        return {model,
                std::move(load),
                stream,
                {},
                {},
                [this](const std::string& text, bool isFinal) {
                    if (isFinal)
                        finals.push_back(text);
                },
                [this](RecognitionWorker::Outcome outcome) { ended.set_value(outcome); }};
    }

    /// In small pieces from a thread of its own, as from a microphone.
    void speak(std::size_t count) {
        std::thread([&] {
            for (std::size_t frame = 0; frame < count; ++frame)
                stream->write(frames(1, 1));
        }).join();
        stream->finish();
    }
};

} // namespace

struct RecognitionWorkerTest : testing::Test {
    std::atomic<int> loads = 0;
    std::atomic<int> alive = 0;
    RecognitionWorker worker;

    struct CountedDecoder final : WindowDecoder {
        explicit CountedDecoder(std::atomic<int>& count) : alive(count) { ++alive; }
        ~CountedDecoder() override { --alive; }
        std::string decode(std::span<const float> samples) override { return fake.decode(samples); }
        std::atomic<int>& alive;
        FakeDecoder fake;
    };

    RecognitionWorker::Load load() {
        return [this] {
            ++loads;
            return LoadedModel{std::make_unique<FakeVoiceActivity>(),
                               std::make_unique<CountedDecoder>(alive)};
        };
    }

    RecognitionWorker::Outcome endOf(Dictation& dictation) {
        EXPECT_EQ(dictation.end.wait_for(deadline), std::future_status::ready);
        return dictation.end.get();
    }
};

TEST_F(RecognitionWorkerTest, TakesOneDictationAfterTheOther) {
    for (int round = 0; round < 3; ++round) {
        Dictation dictation;
        worker.begin(dictation.job("a", load()));
        dictation.speak(50);
        EXPECT_EQ(endOf(dictation), RecognitionWorker::Outcome::done);
        EXPECT_THAT(dictation.finals, ElementsAre("50"));
    }
    EXPECT_EQ(loads, 1);
}

TEST_F(RecognitionWorkerTest, LosesNothingThatWasSaidWhileTheModelWasLoaded) {
    std::promise<void> mayLoad;
    Dictation dictation;
    worker.begin(dictation.job("a", [&, inner = load()] {
        mayLoad.get_future().wait();
        return inner();
    }));
    dictation.speak(80);
    mayLoad.set_value();
    EXPECT_EQ(endOf(dictation), RecognitionWorker::Outcome::done);
    EXPECT_THAT(dictation.finals, ElementsAre("80"));
}

TEST_F(RecognitionWorkerTest, CorrectsWhatTheModelGives) {
    Dictation dictation;
    auto job = dictation.job("a", load());
    job.correct = [](const std::string& text) { return "<" + text + ">"; };
    worker.begin(std::move(job));
    dictation.speak(50);
    endOf(dictation);
    EXPECT_THAT(dictation.finals, ElementsAre("<50>"));
}

TEST_F(RecognitionWorkerTest, LoadsAheadAndAgainForAnotherModel) {
    worker.prepare("a", load());
    for (const char* model : {"a", "b", "b"}) {
        Dictation dictation;
        worker.begin(dictation.job(model, load()));
        dictation.speak(20);
        endOf(dictation);
    }
    EXPECT_EQ(loads, 2);
    EXPECT_EQ(alive, 1);
}

TEST_F(RecognitionWorkerTest, GivesTheModelBack) {
    Dictation first;
    worker.begin(first.job("a", load()));
    first.speak(20);
    endOf(first);
    worker.release();
    Dictation second;
    worker.begin(second.job("a", load()));
    second.speak(20);
    endOf(second);
    EXPECT_EQ(loads, 2);
    EXPECT_EQ(alive, 1);
}

TEST_F(RecognitionWorkerTest, SaysThatAModelCannotBeLoadedAndTriesAgain) {
    for (const bool hasModel : {false, false, true}) {
        Dictation dictation;
        worker.begin(
            dictation.job("a", [&]() -> LoadedModel { return hasModel ? load()() : LoadedModel{}; }));
        dictation.speak(20);
        EXPECT_EQ(endOf(dictation),
                  hasModel ? RecognitionWorker::Outcome::done : RecognitionWorker::Outcome::modelFailed);
    }
}

TEST_F(RecognitionWorkerTest, EndsADictationWhileAPreviewIsBeingDecoded) {
    struct SlowPreviews final : WindowDecoder {
        std::string decode(std::span<const float> samples) override {
            // The window of the end is longer than that of the preview.
            if (samples.size() <= 20 * VoiceActivity::frameSamples) {
                hasBegun.set_value();
                mayEnd.get_future().wait();
            }
            return std::to_string(samples.size() / VoiceActivity::frameSamples);
        }
        std::promise<void> hasBegun;
        std::promise<void> mayEnd;
    };
    auto decoder = std::make_unique<SlowPreviews>();
    SlowPreviews& model = *decoder;
    Dictation dictation;
    worker.begin(dictation.job("a", [&] {
        return LoadedModel{std::make_unique<FakeVoiceActivity>(), std::move(decoder)};
    }));
    dictation.stream->write(frames(20, 1));
    ASSERT_EQ(model.hasBegun.get_future().wait_for(deadline), std::future_status::ready);
    dictation.speak(30);
    EXPECT_EQ(endOf(dictation), RecognitionWorker::Outcome::done);
    EXPECT_THAT(dictation.finals, ElementsAre("50"));
    model.mayEnd.set_value();
    // The model stays until the preview is done with it.
    worker.release();
}

TEST_F(RecognitionWorkerTest, EndsInTheMiddleOfADictation) {
    Dictation dictation;
    {
        RecognitionWorker brief;
        brief.begin(dictation.job("a", load()));
        dictation.stream->write(frames(20, 1));
    }
    EXPECT_EQ(dictation.end.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    EXPECT_EQ(alive, 0);
}

} // namespace velorin

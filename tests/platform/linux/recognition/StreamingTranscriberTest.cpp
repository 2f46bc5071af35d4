#include "platform/linux/recognition/StreamingTranscriber.h"
#include "tests/platform/linux/recognition/FakeRecogniser.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace velorin {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::size_t frameSamples = VoiceActivity::frameSamples;

struct Given {
    std::string text;
    bool isFinal;
    bool operator==(const Given&) const = default;
};

void PrintTo(const Given& given, std::ostream* stream) {
    *stream << '"' << given.text << '"' << (given.isFinal ? " final" : "");
}

} // namespace

struct StreamingTranscriberTest : testing::Test {
    FakeVoiceActivity voiceActivity;
    FakeDecoder decoder;
    FakeAhead ahead{decoder};
    StreamingRules rules;
    std::vector<Given> given;
    StreamingTranscriber transcriber = make();

    StreamingTranscriber make() {
        return {voiceActivity, decoder, ahead, rules, [this](const std::string& text, bool isFinal) {
                    given.push_back({text, isFinal});
                }};
    }

    void speech(std::size_t count, float value = 1) { transcriber.add(frames(count, value)); }
    void pause(std::size_t count) { transcriber.add(frames(count, 0)); }
};

TEST_F(StreamingTranscriberTest, GivesNothingForSilence) {
    pause(1000);
    EXPECT_FALSE(transcriber.preview());
    transcriber.finish();
    EXPECT_THAT(given, IsEmpty());
    EXPECT_THAT(decoder.windows, IsEmpty());
}

TEST_F(StreamingTranscriberTest, KeepsALittleBeforeAndAfterSpeech) {
    pause(50);
    speech(20);
    pause(50);
    transcriber.finish();
    EXPECT_THAT(given, ElementsAre(Given{std::to_string(rules.before + 20 + rules.after), true}));
}

TEST_F(StreamingTranscriberTest, LeavesOutTheMiddleOfALongPause) {
    speech(20);
    pause(100);
    speech(20);
    transcriber.finish();
    EXPECT_THAT(given, ElementsAre(Given{std::to_string(20 + rules.after + rules.before + 20), true}));
}

TEST_F(StreamingTranscriberTest, KeepsAShortPauseWhole) {
    speech(20);
    pause(rules.after + 2);
    speech(20);
    transcriber.finish();
    EXPECT_THAT(given, ElementsAre(Given{std::to_string(40 + rules.after + 2), true}));
}

TEST_F(StreamingTranscriberTest, NeverShowsTheModelWhatIsNotSpeechNorBesideIt) {
    // Silence is 0, noise far from speech 0 in its first sample and 9 in its others.
    std::vector<float> noise = frames(100, 9);
    for (std::size_t i = 0; i < noise.size(); i += frameSamples)
        noise[i] = 0;
    std::mt19937 random(1);
    for (int round = 0; round < 30; ++round) {
        transcriber.add(noise);
        pause(10);
        speech(1 + random() % 40);
        pause(10);
        if (random() % 2 == 0)
            transcriber.preview();
    }
    transcriber.add(noise);
    transcriber.finish();
    ASSERT_FALSE(decoder.windows.empty());
    for (const auto& window : decoder.windows)
        EXPECT_EQ(std::count(window.begin(), window.end(), 9.0F), 0);
}

TEST_F(StreamingTranscriberTest, TakesANoiseTooShortForAWordForNoWord) {
    speech(rules.leastSpeech - 1);
    pause(rules.pauseToEnd);
    speech(rules.leastSpeech - 1);
    pause(rules.pauseToEnd);
    EXPECT_FALSE(transcriber.preview());
    transcriber.finish();
    EXPECT_THAT(decoder.windows, IsEmpty());
}

TEST_F(StreamingTranscriberTest, PreviewsWhenEnoughIsNew) {
    speech(rules.newSpeechToDecode - 1);
    EXPECT_FALSE(transcriber.preview());
    speech(1);
    EXPECT_TRUE(transcriber.preview());
    EXPECT_FALSE(transcriber.preview());
    EXPECT_THAT(given, ElementsAre(Given{std::to_string(rules.newSpeechToDecode), false}));
    speech(rules.newSpeechToDecode);
    EXPECT_TRUE(transcriber.preview());
    EXPECT_THAT(given, SizeIs(2));
}

/// It would hold up the decode that is needed most.
TEST_F(StreamingTranscriberTest, BeginsNoPreviewInAPauseUntilItMayBeTheEnd) {
    speech(rules.newSpeechToDecode);
    pause(1);
    EXPECT_FALSE(transcriber.preview());
    pause(rules.pauseToDecode - 2);
    EXPECT_FALSE(transcriber.preview());
    pause(1);
    EXPECT_TRUE(transcriber.preview());
}

TEST_F(StreamingTranscriberTest, HasTheAnswerReadyAfterAMomentOfPause) {
    speech(rules.newSpeechToDecode);
    transcriber.preview();
    pause(rules.pauseToDecode);
    EXPECT_TRUE(transcriber.preview());
    const std::size_t decodes = decoder.windows.size();
    pause(200);
    EXPECT_FALSE(transcriber.preview());
    transcriber.finish();
    EXPECT_EQ(decoder.windows.size(), decodes);
    EXPECT_TRUE(given.back().isFinal);
}

TEST_F(StreamingTranscriberTest, EndsALongEnoughWindowAtAPause) {
    speech(rules.leastToEnd);
    pause(rules.pauseToEnd - 1);
    EXPECT_THAT(given, IsEmpty());
    pause(1);
    EXPECT_THAT(given, ElementsAre(Given{std::to_string(rules.leastToEnd + rules.after), true}));
    pause(100);
    transcriber.finish();
    EXPECT_THAT(given, SizeIs(1));
}

TEST_F(StreamingTranscriberTest, KeepsAShortWindowOpenThroughAPause) {
    speech(20);
    pause(rules.pauseToEnd);
    EXPECT_THAT(given, IsEmpty());
}

TEST_F(StreamingTranscriberTest, BeginsEveryResultAfterTheFirstFinalOneWithASpace) {
    decoder.answer = [](auto) { return "words"; };
    speech(rules.leastToEnd);
    transcriber.preview();
    pause(rules.pauseToEnd);
    speech(rules.newSpeechToDecode);
    transcriber.preview();
    transcriber.finish();
    EXPECT_THAT(given, ElementsAre(Given{"words", false}, Given{"words", true}, Given{" words", false},
                                   Given{" words", true}));
}

TEST_F(StreamingTranscriberTest, PutsNoSpacesWhereALanguageHasNone) {
    rules.isSpaced = false;
    StreamingTranscriber unspaced = make();
    for (int window = 0; window < 2; ++window) {
        unspaced.add(frames(rules.leastToEnd, 1));
        unspaced.add(frames(rules.pauseToEnd, 0));
    }
    ASSERT_THAT(given, SizeIs(2));
    EXPECT_NE(given[1].text.front(), ' ');
}

TEST_F(StreamingTranscriberTest, CutsAVeryLongWindowInItsLongestPause) {
    decoder.answer = [](std::span<const float> samples) {
        // Which kinds of speech the window holds.
        std::string kinds;
        for (std::size_t i = 0; i < samples.size(); i += frameSamples)
            if (samples[i] != 0 && (kinds.empty() || kinds.back() != static_cast<char>(samples[i])))
                kinds += static_cast<char>(samples[i]);
        return kinds;
    };
    speech(rules.most - 60, 'a');
    pause(4);
    speech(20, 'b');
    pause(2);
    speech(30, 'c');
    speech(10, 'd');
    transcriber.finish();
    EXPECT_THAT(given, ElementsAre(Given{"a", true}, Given{" bcd", true}));
}

TEST_F(StreamingTranscriberTest, CutsAtTheQuietestFrameWhereNobodyPauses) {
    speech(rules.most - 50, 9);
    speech(1, 0.5F);
    speech(100, 9);
    transcriber.finish();
    ASSERT_THAT(given, SizeIs(2));
    EXPECT_EQ(given[0].text, std::to_string(rules.most - 50));
}

TEST_F(StreamingTranscriberTest, LosesAndDoublesNothingAtTheEdges) {
    std::mt19937 random(2);
    float next = 1;
    std::vector<float> spoken;
    for (int stretch = 0; stretch < 300; ++stretch) {
        for (auto frame = 3 + random() % 80; frame > 0; --frame) {
            spoken.push_back(next);
            speech(1, next++);
        }
        pause(random() % 20);
    }
    std::vector<float> decoded;
    // Final windows only: no previews were asked for.
    transcriber.finish();
    for (const auto& window : decoder.windows)
        for (std::size_t i = 0; i < window.size(); i += frameSamples)
            if (window[i] != 0)
                decoded.push_back(window[i]);
    EXPECT_EQ(decoded, spoken);
}

TEST_F(StreamingTranscriberTest, DecodesTheSameWindowsHoweverTheSoundIsCut) {
    std::mt19937 random(3);
    std::vector<float> sound;
    for (int stretch = 0; stretch < 60; ++stretch) {
        const auto piece = frames(1 + random() % 90, random() % 3 == 0 ? 0.0F : 1.0F);
        sound.insert(sound.end(), piece.begin(), piece.end());
    }
    transcriber.add(sound);
    transcriber.finish();
    const auto whole = given;
    given.clear();
    StreamingTranscriber other = make();
    for (std::size_t first = 0; first < sound.size();) {
        const std::size_t count = std::min<std::size_t>(1 + random() % 1500, sound.size() - first);
        other.add(std::span<const float>(sound).subspan(first, count));
        first += count;
    }
    other.finish();
    EXPECT_EQ(given, whole);
}

TEST_F(StreamingTranscriberTest, HearsTheLastPiecesOfAFrame) {
    speech(10);
    transcriber.add(std::vector<float>(100, 1));
    transcriber.finish();
    EXPECT_THAT(given, ElementsAre(Given{"11", true}));
}

TEST_F(StreamingTranscriberTest, TakesBackAPreviewOfWhichNothingIsLeft) {
    decoder.answer = [count = 0](auto) mutable { return count++ == 0 ? "thing" : ""; };
    speech(rules.newSpeechToDecode);
    transcriber.preview();
    speech(1);
    transcriber.finish();
    EXPECT_THAT(given, ElementsAre(Given{"thing", false}, Given{"", true}));
}

TEST_F(StreamingTranscriberTest, DoesNotWaitForAPreviewAtTheEnd) {
    ahead.waits = true;
    speech(rules.newSpeechToDecode);
    EXPECT_TRUE(transcriber.preview());
    speech(5);
    EXPECT_FALSE(transcriber.preview());
    transcriber.finish();
    EXPECT_THAT(given, ElementsAre(Given{std::to_string(rules.newSpeechToDecode + 5), true}));
    EXPECT_EQ(ahead.awaited, 0);
    // Nor does its result come late.
    ahead.end();
    EXPECT_FALSE(transcriber.preview());
    EXPECT_THAT(given, SizeIs(1));
}

TEST_F(StreamingTranscriberTest, WaitsAtTheEndForADecodeOfTheVerySameWindow) {
    ahead.waits = true;
    speech(rules.newSpeechToDecode);
    pause(rules.pauseToDecode);
    EXPECT_TRUE(transcriber.preview());
    pause(3);
    transcriber.finish();
    EXPECT_EQ(ahead.awaited, 1);
    EXPECT_THAT(decoder.windows, SizeIs(1));
    EXPECT_THAT(given, ElementsAre(Given{std::to_string(rules.newSpeechToDecode + rules.after), true}));
}

TEST_F(StreamingTranscriberTest, TakesALatePreviewForNoneOfTheNextWindow) {
    ahead.waits = true;
    speech(rules.leastToEnd);
    EXPECT_TRUE(transcriber.preview());
    pause(rules.pauseToEnd);
    ASSERT_THAT(given, SizeIs(1));
    speech(rules.newSpeechToDecode);
    // The thread is still busy with the window that is over.
    EXPECT_FALSE(transcriber.preview());
    ahead.end();
    EXPECT_TRUE(transcriber.preview());
    EXPECT_THAT(given, SizeIs(1));
    ahead.end();
    transcriber.preview();
    ASSERT_THAT(given, SizeIs(2));
    EXPECT_FALSE(given[1].isFinal);
}

TEST_F(StreamingTranscriberTest, TakesALatePreviewForNoneOfTheNextDictation) {
    ahead.waits = true;
    speech(rules.newSpeechToDecode);
    EXPECT_TRUE(transcriber.preview());
    StreamingTranscriber next = make();
    ahead.end();
    EXPECT_FALSE(next.preview());
    EXPECT_THAT(given, IsEmpty());
    EXPECT_TRUE(ahead.isIdle());
}

TEST_F(StreamingTranscriberTest, ShowsNoPreviewInWhichTheModelRepeatsItself) {
    std::string text;
    decoder.answer = [&](auto) { return text; };
    for (const auto& [answer, isShown] :
         {std::pair{"the end of the state of the state of the state of the", false},
          {"It was a very very very long day.", true},
          {"one two three one two three", true},
          {"one two three one two three one two three", false},
          {"a b c d e f g h a b c d e f g h a b c d e f g h a", false},
          {"I said it and I said it again", true}}) {
        text = answer;
        const std::size_t before = given.size();
        speech(rules.newSpeechToDecode);
        EXPECT_TRUE(transcriber.preview());
        EXPECT_EQ(given.size() > before, isShown) << text;
    }
    // What is final is given all the same: it is what the model heard.
    text = "again and again and again and again and again and again";
    speech(1);
    transcriber.finish();
    EXPECT_EQ(given.back(), (Given{text, true}));
}

TEST_F(StreamingTranscriberTest, GivesNoResultWhereNothingWasUnderstood) {
    decoder.answer = [](auto) { return ""; };
    speech(rules.leastToEnd);
    transcriber.preview();
    pause(rules.pauseToEnd);
    decoder.answer = [](auto) { return "first"; };
    speech(20);
    transcriber.finish();
    EXPECT_THAT(given, ElementsAre(Given{"first", true}));
}

} // namespace velorin

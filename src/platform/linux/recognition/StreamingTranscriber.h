/// Makes a live transcript out of a model that decodes whole windows of sound.
///
/// Sound passes voice activity in frames; speech, with a little before and after it, makes a window. The
/// growing window is decoded again and again and given out as a volatile result; at a pause, or when it gets
/// long, it becomes a final result and a new one begins. When the speaker pauses for a moment the window is
/// decoded at once, so that the answer is there if that was the end. The model never sees anything else: on
/// silence and noise it makes up text.
///
/// What is only a preview is decoded beside this thread. A final result never waits for one, unless it is of
/// the very same window.
///
///     StreamingTranscriber transcriber(voiceActivity, decoder, ahead, {}, emit);
///     transcriber.add(samples);            // as they come
///     transcriber.preview();               // when no more are waiting, and when `ahead` has ended
///     transcriber.finish();                // the rest of the results
///
/// One thread. Standard primitives only.
#pragma once

#include "platform/linux/recognition/AheadDecoder.h"
#include "platform/linux/recognition/VoiceActivity.h"
#include "platform/linux/recognition/WindowDecoder.h"

#include <functional>
#include <string>
#include <vector>

namespace velorin {

struct StreamingRules {
    // In frames of 32 ms.
    std::size_t before = 7;        ///< Kept before speech,
    std::size_t after = 7;         ///< and after it.
    std::size_t pauseToDecode = 7; ///< A pause after which the window is decoded ahead of time.
    std::size_t pauseToEnd = 13;   ///< A pause that ends a window …
    std::size_t leastToEnd = 188;  ///< … which is at least this long.
    std::size_t most = 375;        ///< A window this long ends at its longest pause …
    std::size_t lookBack = 94;     ///< … of this many last frames.
    std::size_t newSpeechToDecode = 10;
    /// A slow machine decodes less often: as much speech as two decodes take, but not more than this.
    std::size_t mostNewSpeechToDecode = 31;
    std::size_t leastSpeech = 3; ///< Less speech than this is a noise.
    /// Whether words are parted by spaces: then every result after the first final one begins with one.
    bool isSpaced = true;
};

class StreamingTranscriber final {
public:
    using Emit = std::function<void(const std::string& text, bool isFinal)>;

    StreamingTranscriber(VoiceActivity& voiceActivity, WindowDecoder& decoder, AheadDecoder& ahead,
                         StreamingRules rules, Emit emit);

    /// Takes sound in, and decodes the windows that end in it.
    void add(std::span<const float> samples);

    /// Gives out a preview that has ended, and begins the next if enough is new in the window; tells whether
    /// it did.
    bool preview();

    /// The stream has ended: gives out what is left as a final result.
    void finish();

private:
    using Frame = std::vector<float>;

    void addFrame(std::span<const float, VoiceActivity::frameSamples> frame);
    void addSpeech(std::span<const float> frame);
    void addPause(std::span<const float> frame);
    void append(std::span<const float> frame, bool isSpeech);
    void cutLongWindow();
    [[nodiscard]] std::size_t cutPosition() const;
    void endWindow(std::size_t frames);
    [[nodiscard]] bool isPreviewDue() const;
    void takePreview();
    void keep(AheadDecoder::Decoded decoded);
    const std::string& decoded(std::size_t frames);
    void give(const std::string& text, bool isFinal);

    VoiceActivity& voiceActivity_;
    WindowDecoder& decoder_;
    AheadDecoder& ahead_;
    StreamingRules rules_;
    Emit emit_;

    std::vector<float> partialFrame_;
    /// The last frames without speech, which belong to the next speech.
    std::vector<float> before_;
    std::size_t pause_ = 0; ///< Frames since the last speech.

    std::vector<float> window_;
    std::vector<bool> isSpeech_; ///< A frame of the window each.
    std::size_t speechFrames_ = 0;
    std::size_t newSpeech_ = 0; ///< Frames of speech since the last decode began.
    /// Of how many frames a preview is being decoded; 0 for none of this window.
    std::size_t aheadFrames_ = 0;
    std::size_t decodedFrames_ = 0;
    std::size_t framesOfADecode_ = 0; ///< How long the last decode took.
    std::string decodedText_;
    std::string volatileText_;
    bool hasGivenFinal_ = false;
};

} // namespace velorin

#include "platform/linux/recognition/StreamingTranscriber.h"

#include <algorithm>
#include <chrono>
#include <numeric>
#include <string_view>
#include <utility>

namespace velorin {

namespace {

constexpr std::size_t frameSamples = VoiceActivity::frameSamples;
constexpr std::chrono::milliseconds frameTime{32};

float energy(std::span<const float> samples) {
    return std::transform_reduce(samples.begin(), samples.end(), 0.0F, std::plus<>(),
                                 [](float value) { return value * value; });
}

std::vector<std::string_view> wordsOf(std::string_view text) {
    std::vector<std::string_view> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        if (end > 0)
            words.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

/// Whether the text ends with the same three to eight words thrice.
bool repeatsItself(std::string_view text) {
    constexpr std::size_t times = 3;
    const auto words = wordsOf(text);
    for (std::size_t length = 3; length <= 8 && times * length <= words.size(); ++length) {
        // The last word may be cut.
        const auto end = words.end() - (words.size() > times * length ? 1 : 0);
        const auto last = end - static_cast<std::ptrdiff_t>(length);
        bool isSame = true;
        for (std::size_t time = 1; time < times && isSame; ++time)
            isSame = std::equal(last, end, last - static_cast<std::ptrdiff_t>(time * length));
        if (isSame)
            return true;
    }
    return false;
}

} // namespace

StreamingTranscriber::StreamingTranscriber(VoiceActivity& voiceActivity, WindowDecoder& decoder,
                                           AheadDecoder& ahead, StreamingRules rules, Emit emit)
    : voiceActivity_(voiceActivity), decoder_(decoder), ahead_(ahead), rules_(rules), emit_(std::move(emit)) {
    voiceActivity_.reset();
}

void StreamingTranscriber::add(std::span<const float> samples) {
    partialFrame_.insert(partialFrame_.end(), samples.begin(), samples.end());
    std::size_t used = 0;
    for (; partialFrame_.size() - used >= frameSamples; used += frameSamples)
        addFrame(std::span<const float, frameSamples>(partialFrame_.data() + used, frameSamples));
    partialFrame_.erase(partialFrame_.begin(), partialFrame_.begin() + static_cast<std::ptrdiff_t>(used));
}

void StreamingTranscriber::addFrame(std::span<const float, frameSamples> frame) {
    if (voiceActivity_.isSpeech(frame))
        addSpeech(frame);
    else
        addPause(frame);
}

void StreamingTranscriber::addSpeech(std::span<const float> frame) {
    pause_ = 0;
    for (std::size_t start = 0; start < before_.size(); start += frameSamples)
        append(std::span<const float>(before_).subspan(start, frameSamples), false);
    before_.clear();
    append(frame, true);
    if (isSpeech_.size() >= rules_.most)
        cutLongWindow();
}

void StreamingTranscriber::addPause(std::span<const float> frame) {
    ++pause_;
    if (!window_.empty() && pause_ <= rules_.after) {
        append(frame, false);
    } else {
        before_.insert(before_.end(), frame.begin(), frame.end());
        if (before_.size() > rules_.before * frameSamples)
            before_.erase(before_.begin(), before_.begin() + frameSamples);
    }
    if (pause_ != rules_.pauseToEnd)
        return;
    if (isSpeech_.size() >= rules_.leastToEnd || speechFrames_ < rules_.leastSpeech)
        endWindow(isSpeech_.size());
}

void StreamingTranscriber::append(std::span<const float> frame, bool isSpeech) {
    window_.insert(window_.end(), frame.begin(), frame.end());
    isSpeech_.push_back(isSpeech);
    speechFrames_ += isSpeech ? 1 : 0;
    newSpeech_ += isSpeech ? 1 : 0;
}

bool StreamingTranscriber::preview() {
    takePreview();
    if (!ahead_.isIdle() || !isPreviewDue())
        return false;
    aheadFrames_ = isSpeech_.size();
    newSpeech_ = 0;
    ahead_.begin(window_);
    takePreview();
    return true;
}

bool StreamingTranscriber::isPreviewDue() const {
    if (speechFrames_ < rules_.leastSpeech || decodedFrames_ == isSpeech_.size())
        return false;
    // Half of the time is left free, for the machine's other work.
    const std::size_t enough =
        std::clamp(2 * framesOfADecode_, rules_.newSpeechToDecode, rules_.mostNewSpeechToDecode);
    // Within a pause there is nothing new to show, and the decode that may be the last one comes soon.
    return pause_ >= rules_.pauseToDecode || (pause_ == 0 && newSpeech_ >= enough);
}

void StreamingTranscriber::takePreview() {
    auto decoded = ahead_.take();
    // Of a window that has ended since, or of another dictation: it is late.
    if (!decoded || aheadFrames_ == 0)
        return;
    keep(std::move(*decoded));
    // A word that is cut off has the model repeat itself: that is no news to anybody.
    if (!repeatsItself(decodedText_))
        give(decodedText_, false);
}

void StreamingTranscriber::keep(AheadDecoder::Decoded decoded) {
    decodedText_ = std::move(decoded.text);
    decodedFrames_ = std::exchange(aheadFrames_, 0);
    framesOfADecode_ = static_cast<std::size_t>(decoded.time / frameTime);
}

void StreamingTranscriber::finish() {
    if (!partialFrame_.empty()) {
        partialFrame_.resize(frameSamples);
        addFrame(std::span<const float, frameSamples>(partialFrame_.data(), frameSamples));
        partialFrame_.clear();
    }
    endWindow(isSpeech_.size());
}

void StreamingTranscriber::cutLongWindow() { endWindow(cutPosition()); }

/// The middle of the longest pause; where there is none, the quietest frame.
std::size_t StreamingTranscriber::cutPosition() const {
    const std::size_t end = isSpeech_.size();
    const std::size_t begin = end - std::min(rules_.lookBack, end - 1);
    std::size_t longest = 0;
    std::size_t position = 0;
    std::size_t length = 0;
    for (std::size_t frame = begin; frame < end; ++frame) {
        length = isSpeech_[frame] ? 0 : length + 1;
        if (length > longest) {
            longest = length;
            position = frame + 1 - length / 2;
        }
    }
    if (longest > 0)
        return position;
    const auto loudness = [this](std::size_t frame) {
        return energy(std::span<const float>(window_).subspan(frame * frameSamples, frameSamples));
    };
    std::vector<float> loud(end - begin);
    for (std::size_t frame = begin; frame < end; ++frame)
        loud[frame - begin] = loudness(frame);
    return begin + static_cast<std::size_t>(std::min_element(loud.begin(), loud.end()) - loud.begin());
}

/// Makes the first frames of the window final; the rest begins the next one.
void StreamingTranscriber::endWindow(std::size_t frames) {
    const auto isSpeechBefore = isSpeech_.begin() + static_cast<std::ptrdiff_t>(frames);
    const auto speech = static_cast<std::size_t>(std::count(isSpeech_.begin(), isSpeechBefore, true));
    if (speech >= rules_.leastSpeech)
        give(decoded(frames), true);
    else if (!volatileText_.empty())
        give({}, true);
    window_.erase(window_.begin(), window_.begin() + static_cast<std::ptrdiff_t>(frames * frameSamples));
    isSpeech_.erase(isSpeech_.begin(), isSpeechBefore);
    speechFrames_ -= speech;
    newSpeech_ = speechFrames_;
    aheadFrames_ = 0;
    decodedFrames_ = 0;
    decodedText_.clear();
}

/// The text of the first frames of the window, which may be known already, or soon.
const std::string& StreamingTranscriber::decoded(std::size_t frames) {
    if (frames == aheadFrames_)
        keep(ahead_.await());
    if (frames != decodedFrames_) {
        decodedText_ = decoder_.decode(std::span<const float>(window_).first(frames * frameSamples));
        decodedFrames_ = frames;
    }
    return decodedText_;
}

void StreamingTranscriber::give(const std::string& text, bool isFinal) {
    // Nothing understood takes back what was shown, and is no result otherwise.
    const bool isNews = !text.empty() || !volatileText_.empty();
    const bool isRepeated = !isFinal && text == volatileText_;
    if (isNews && !isRepeated) {
        const bool needsSpace = rules_.isSpaced && hasGivenFinal_ && !text.empty();
        emit_(needsSpace ? " " + text : text, isFinal);
    }
    hasGivenFinal_ = hasGivenFinal_ || (isFinal && !text.empty());
    volatileText_ = isFinal ? std::string() : text;
}

} // namespace velorin

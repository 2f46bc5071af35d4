#include "platform/linux/sound/SoxrConverter.h"

#include <algorithm>
#include <cmath>

#include <soxr.h>

namespace velorin {

namespace {

constexpr float int16Range = 32768;

std::optional<std::vector<float>> readAsFloats(const AudioBuffer& buffer) {
    if (const auto* floats = std::get_if<std::vector<float>>(&buffer.samples))
        return *floats;
    const auto* integers = std::get_if<std::vector<qint16>>(&buffer.samples);
    if (!integers)
        return std::nullopt;
    std::vector<float> samples(integers->size());
    std::transform(integers->begin(), integers->end(), samples.begin(),
                   [](qint16 value) { return static_cast<float>(value) / int16Range; });
    return samples;
}

std::vector<qint16> toIntegers(const std::vector<float>& samples) {
    std::vector<qint16> integers(samples.size());
    std::transform(samples.begin(), samples.end(), integers.begin(), [](float value) {
        return static_cast<qint16>(std::lrint(std::clamp(value * int16Range, -int16Range, int16Range - 1)));
    });
    return integers;
}

std::vector<float> remix(std::vector<float> samples, std::size_t from, std::size_t to) {
    if (from == to)
        return samples;
    std::vector<float> mixed(samples.size() / from * to);
    for (std::size_t frame = 0; frame < samples.size() / from; ++frame) {
        float sum = 0;
        for (std::size_t channel = 0; channel < from; ++channel)
            sum += samples[frame * from + channel];
        for (std::size_t channel = 0; channel < to; ++channel)
            mixed[frame * to + channel] = sum / static_cast<float>(from);
    }
    return mixed;
}

struct FreeSoxr {
    void operator()(soxr* resampler) const { soxr_delete(resampler); }
};
using Resampler = std::unique_ptr<soxr, FreeSoxr>;

class SoxrConverter final : public AudioConverter {
public:
    SoxrConverter(AudioFormat from, AudioFormat to, Resampler resampler)
        : from_(from), to_(to), resampler_(std::move(resampler)) {}

    tl::expected<AudioBuffer, QString> convert(const AudioBuffer& source, quint32 capacity) override {
        auto samples = readAsFloats(source);
        if (!samples || source.format != from_)
            return tl::unexpected(QStringLiteral("not the converter's format"));
        const auto channels = static_cast<std::size_t>(to_.channels);
        samples = remix(std::move(*samples), static_cast<std::size_t>(from_.channels), channels);
        if (resampler_ && !resample(*samples, capacity))
            return tl::unexpected(QStringLiteral("the resampler failed"));
        samples->resize(std::min(samples->size(), capacity * channels));
        if (to_.samples == AudioFormat::Samples::int16)
            return AudioBuffer{to_, toIntegers(*samples), 0};
        return AudioBuffer{to_, std::move(*samples), 0};
    }

private:
    bool resample(std::vector<float>& samples, quint32 capacity) {
        const auto channels = static_cast<std::size_t>(to_.channels);
        std::vector<float> out(capacity * channels);
        std::size_t taken = 0;
        std::size_t given = 0;
        const soxr_error_t error = soxr_process(resampler_.get(), samples.data(), samples.size() / channels,
                                                &taken, out.data(), capacity, &given);
        out.resize(given * channels);
        samples = std::move(out);
        return error == nullptr;
    }

    AudioFormat from_;
    AudioFormat to_;
    /// None when both rates are the same.
    Resampler resampler_;
};

bool isUsable(const AudioFormat& format) {
    return format.channels > 0 && format.sampleRate > 0 && format.samples != AudioFormat::Samples::other;
}

/// Of the library's two engines this one, made for rates that change, keeps back 14 ms of sound at the usual
/// rates where the other one, which works in large blocks, keeps back 40: the last syllable of a dictation
/// would be in it.
Resampler makeResampler(double ratio, unsigned channels) {
    soxr_error_t error = nullptr;
    const soxr_io_spec_t samples = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, SOXR_VR);
    const soxr_runtime_spec_t thread = soxr_runtime_spec(1);
    Resampler resampler(soxr_create(ratio, 1, channels, &error, &samples, &quality, &thread));
    if (!resampler || error || soxr_set_io_ratio(resampler.get(), ratio, 0) != nullptr)
        return nullptr;
    return resampler;
}

} // namespace

std::unique_ptr<AudioConverter> SoxrConverterFactory::make(AudioFormat from, AudioFormat to) {
    if (!isUsable(from) || !isUsable(to))
        return nullptr;
    Resampler resampler;
    if (from.sampleRate != to.sampleRate) {
        resampler = makeResampler(from.sampleRate / to.sampleRate, static_cast<unsigned>(to.channels));
        if (!resampler)
            return nullptr;
    }
    return std::make_unique<SoxrConverter>(from, to, std::move(resampler));
}

} // namespace velorin

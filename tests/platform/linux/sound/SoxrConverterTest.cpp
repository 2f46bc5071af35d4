#include "platform/linux/sound/SoxrConverter.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

namespace velorin {

namespace {

using Samples = AudioFormat::Samples;

constexpr AudioFormat mono16k{16000, 1, Samples::float32};

AudioBuffer tone(const AudioFormat& format, std::size_t first, std::size_t frames) {
    std::vector<float> samples;
    for (std::size_t frame = first; frame < first + frames; ++frame)
        for (int channel = 0; channel < format.channels; ++channel)
            samples.push_back(0.5F *
                              static_cast<float>(std::sin(2 * std::numbers::pi * 440 *
                                                          static_cast<double>(frame) / format.sampleRate)));
    return {format, std::move(samples), 0};
}

/// One second, in buffers as they come from a microphone.
std::vector<float> convertOneSecond(AudioConverter& converter, const AudioFormat& from) {
    std::vector<float> all;
    for (std::size_t frame = 0; frame < static_cast<std::size_t>(from.sampleRate); frame += 1000) {
        const auto part = converter.convert(tone(from, frame, 1000), 100000);
        EXPECT_TRUE(part);
        const auto& samples = std::get<std::vector<float>>(part->samples);
        all.insert(all.end(), samples.begin(), samples.end());
    }
    return all;
}

struct Fit {
    double amplitude;
    double rest; ///< What is left of the sound without the tone.
};

/// How much of the sound is the tone, at whatever phase; the first samples are the filter's own.
Fit fitTone(const std::vector<float>& samples) {
    constexpr std::size_t first = 1000;
    constexpr std::size_t count = 12000; // whole periods
    double sine = 0;
    double cosine = 0;
    double power = 0;
    for (std::size_t i = first; i < first + count; ++i) {
        const double angle = 2 * std::numbers::pi * 440 * static_cast<double>(i) / 16000;
        sine += 2 * std::sin(angle) * samples.at(i) / count;
        cosine += 2 * std::cos(angle) * samples.at(i) / count;
        power += 2 * static_cast<double>(samples[i]) * samples[i] / count;
    }
    const double tonePower = sine * sine + cosine * cosine;
    return {std::sqrt(tonePower), std::sqrt(std::max(0.0, power - tonePower))};
}

} // namespace

TEST(SoxrConverter, KeepsATonePure) {
    for (const double rate : {8000.0, 16000.0, 44100.0, 48000.0, 96000.0, 192000.0}) {
        for (const int channels : {1, 2, 8}) {
            const AudioFormat from{rate, channels, Samples::float32};
            const auto converter = SoxrConverterFactory().make(from, mono16k);
            const auto samples = convertOneSecond(*converter, from);
            // Little stays inside: it is the end of the last word.
            ASSERT_NEAR(static_cast<double>(samples.size()), 16000, rate < 16000 ? 500 : 240) << rate;
            const Fit fit = fitTone(samples);
            EXPECT_NEAR(fit.amplitude, 0.5, 0.001) << rate;
            EXPECT_LT(fit.rest, 0.001) << rate;
        }
    }
}

TEST(SoxrConverter, MixesChannelsAndCopiesOne) {
    const AudioFormat stereo{16000, 2, Samples::float32};
    const auto down = SoxrConverterFactory().make(stereo, mono16k);
    EXPECT_EQ(std::get<std::vector<float>>(
                  down->convert({stereo, std::vector<float>{1, 0, 0.5F, 0.5F}, 0}, 10)->samples),
              (std::vector<float>{0.5F, 0.5F}));
    const auto up = SoxrConverterFactory().make(mono16k, stereo);
    EXPECT_EQ(std::get<std::vector<float>>(up->convert({mono16k, std::vector<float>{1, 0}, 0}, 10)->samples),
              (std::vector<float>{1, 1, 0, 0}));
}

TEST(SoxrConverter, GivesIntegersWithoutWrappingAround) {
    const AudioFormat integers{16000, 1, Samples::int16};
    const auto converter = SoxrConverterFactory().make(mono16k, integers);
    const auto converted = converter->convert({mono16k, std::vector<float>{0, 1, -1, 2, -2, 0.5F}, 0}, 10);
    EXPECT_EQ(std::get<std::vector<qint16>>(converted->samples),
              (std::vector<qint16>{0, 32767, -32768, 32767, -32768, 16384}));
    const auto back = SoxrConverterFactory().make(integers, mono16k);
    EXPECT_EQ(
        std::get<std::vector<float>>(back->convert({integers, std::vector<qint16>{16384}, 0}, 10)->samples),
        std::vector<float>{0.5F});
}

TEST(SoxrConverter, RefusesWhatItCannotConvert) {
    SoxrConverterFactory factory;
    EXPECT_FALSE(factory.make({0, 1, Samples::float32}, mono16k));
    EXPECT_FALSE(factory.make({48000, 0, Samples::float32}, mono16k));
    EXPECT_FALSE(factory.make({48000, 1, Samples::other}, mono16k));
    const auto converter = factory.make({48000, 1, Samples::float32}, mono16k);
    EXPECT_FALSE(converter->convert(tone(mono16k, 0, 10), 10));
}

} // namespace velorin

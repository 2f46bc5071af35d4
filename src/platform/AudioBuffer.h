/// Sound as it travels through the program: a format and a run of samples in it. Values.
#pragma once

#include <QtGlobal>

#include <span>
#include <variant>
#include <vector>

namespace velorin {

/// How samples are counted and stored. Several channels are interleaved.
struct AudioFormat {
    enum class Samples { float32, int16, other };

    double sampleRate = 0; ///< frames a second
    int channels = 0;
    Samples samples = Samples::float32;

    bool operator==(const AudioFormat&) const = default;
};

/// One run of sound. A frame is one sample of each channel.
///
///     AudioBuffer silence{format, std::vector<float>(1024 * 2)};   // 1024 frames of two channels
struct AudioBuffer {
    AudioFormat format;
    /// Nothing stands for samples of a kind that we cannot read; `frames` then tells how many there are.
    std::variant<std::monostate, std::vector<float>, std::vector<qint16>> samples;
    quint32 unreadableFrames = 0;

    [[nodiscard]] quint32 frames() const {
        const auto channels = static_cast<std::size_t>(format.channels > 0 ? format.channels : 1);
        if (const auto* floats = std::get_if<std::vector<float>>(&samples))
            return static_cast<quint32>(floats->size() / channels);
        if (const auto* integers = std::get_if<std::vector<qint16>>(&samples))
            return static_cast<quint32>(integers->size() / channels);
        return unreadableFrames;
    }
};

} // namespace velorin

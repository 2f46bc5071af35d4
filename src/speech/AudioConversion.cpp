#include "speech/AudioConversion.h"

#include <QtGlobal>

#include <limits>
#include <utility>

namespace velorin {

quint32 conversionCapacity(double fromRate, double toRate, quint32 frames) {
    constexpr quint32 reserve = 64;
    const double needed = toRate / fromRate * static_cast<double>(frames);
    constexpr double most = std::numeric_limits<quint32>::max() - reserve;
    if (!(needed >= 0 && needed <= most))
        qFatal("audio conversion from %f to %f frames a second", fromRate, toRate);
    return static_cast<quint32>(needed) + reserve;
}

std::optional<AudioBuffer> convert(const AudioBuffer& buffer, AudioConverter& converter,
                                   const AudioFormat& format) {
    auto converted = converter.convert(
        buffer, conversionCapacity(buffer.format.sampleRate, format.sampleRate, buffer.frames()));
    if (!converted || converted->frames() == 0)
        return std::nullopt;
    return std::move(*converted);
}

} // namespace velorin

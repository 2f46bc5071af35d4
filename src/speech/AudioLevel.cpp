#include "speech/AudioLevel.h"

#include <algorithm>
#include <cmath>

namespace velorin {

namespace {

constexpr float int16Scale = 3.0517578e-5F;
constexpr float quietest = 1e-7F;

template <typename Sample>
float meanSquare(const std::vector<Sample>& samples, int channels, quint32 frames, float scale) {
    float sum = 0;
    for (quint32 frame = 0; frame < frames; ++frame) {
        const float value = static_cast<float>(samples[frame * static_cast<std::size_t>(channels)]) * scale;
        sum += value * value;
    }
    return sum / static_cast<float>(frames);
}

} // namespace

float audioLevel(const AudioBuffer& buffer) {
    const quint32 frames = buffer.frames();
    if (frames == 0)
        return 0;
    float square = 0;
    if (const auto* floats = std::get_if<std::vector<float>>(&buffer.samples))
        square = meanSquare(*floats, buffer.format.channels, frames, 1);
    else if (const auto* integers = std::get_if<std::vector<qint16>>(&buffer.samples))
        square = meanSquare(*integers, buffer.format.channels, frames, int16Scale);
    else
        return 0;
    float rms = std::sqrt(square);
    if (!(rms > quietest))
        rms = quietest;
    return std::clamp((20 * std::log10(rms) + 60) / 60, 0.0F, 1.0F);
}

} // namespace velorin

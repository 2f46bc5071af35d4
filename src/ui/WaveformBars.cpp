#include "ui/WaveformBars.h"

#include <algorithm>
#include <cmath>

namespace velorin {
namespace {

/// Below this share of the height a bar would be but a dot.
constexpr double smallestShare = 0.14;
constexpr double idleOpacity = 0.45;
constexpr double quietOpacity = 0.55;

double clamped(float level) {
    return std::isnan(level) ? 0 : std::clamp(static_cast<double>(level), 0.0, 1.0);
}

} // namespace

QList<WaveformBar> waveformBars(double width, double height, const QList<float>& levels,
                                const WaveformShape& shape) {
    const int count = std::max(1, shape.barCount);
    const double barWidth =
        shape.fixedBarWidth.value_or(std::max(1.5, (width - shape.spacing * (count - 1)) / count));
    const double total = count * barWidth + shape.spacing * (count - 1);
    const double left = std::max(0.0, (width - total) / 2);
    const double floor = std::max(shape.minBarHeight, height * smallestShare);
    QList<WaveformBar> bars;
    bars.reserve(count);
    for (int i = 0; i < count; ++i) {
        const auto index = levels.size() - count + i;
        const double v = index < 0 ? 0 : clamped(levels[index]);
        const double barHeight =
            shape.isIdle || v < smallestShare ? floor : std::max(shape.minBarHeight, height * v);
        bars.append({.x = left + i * (barWidth + shape.spacing),
                     .y = (height - barHeight) / 2,
                     .width = barWidth,
                     .height = barHeight,
                     .radius = barWidth / 2,
                     .opacity = shape.isIdle ? idleOpacity : quietOpacity + (1 - quietOpacity) * v});
    }
    return bars;
}

} // namespace velorin

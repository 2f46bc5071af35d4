/// Where the bars of the level meter stand. Pure geometry, in units of the view.
#pragma once

#include <QList>

#include <optional>

namespace velorin {

struct WaveformShape {
    int barCount = 10; ///< At least one bar is drawn.
    bool isIdle = false;
    std::optional<double> fixedBarWidth; ///< Otherwise the bars share the width.
    double spacing = 2;
    double minBarHeight = 5;

    bool operator==(const WaveformShape&) const = default;
};

struct WaveformBar {
    double x = 0; ///< Left edge.
    double y = 0; ///< Top edge.
    double width = 0;
    double height = 0;
    double radius = 0;
    double opacity = 1;
};

/// The newest levels (0 to 1, oldest first), one a bar: they enter from the right, and bars without one stand
/// at the floor. A level that is no number counts as 0.
[[nodiscard]] QList<WaveformBar> waveformBars(double width, double height, const QList<float>& levels,
                                              const WaveformShape& shape);

} // namespace velorin

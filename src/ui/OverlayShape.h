/// The outline of the overlay and the shadow below it. Pure, in units of the view.
#pragma once

#include <QImage>
#include <QPainterPath>
#include <QRegion>

namespace velorin {

/// A rectangle whose corners begin so gently that no joint is seen; plain round ones where there is no room.
[[nodiscard]] QPainterPath continuousRect(const QRectF& rect, double radius);

/// The pixels of a window that belong to the outline, at `scale` device pixels a unit.
[[nodiscard]] QRegion pixelsOf(const QPainterPath& path, double scale);

/// A black shadow of the outline, blurred, as an image of `size` at `scale` device pixels a unit.
[[nodiscard]] QImage shadowOf(const QPainterPath& path, QSizeF size, double scale, double blur, double offset,
                              double opacity);

} // namespace velorin

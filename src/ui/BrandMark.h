/// The application's mark: one picture in one colour, whichever it is needed in. Without the picture the
/// images are empty and everything else works. Main thread.
#pragma once

#include <QIcon>

namespace velorin::BrandMark {

/// 30 by 20 units, in the colour.
[[nodiscard]] QImage image(const QColor& color, double scale = 1);

/// As wide as `size`, two thirds as high.
[[nodiscard]] QImage image(double size, const QColor& color, double scale = 1);

/// The mark in a square, as trays want it, in the sizes that they use.
[[nodiscard]] QIcon trayIcon(const QColor& color);

} // namespace velorin::BrandMark

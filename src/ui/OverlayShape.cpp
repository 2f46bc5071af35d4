#include "ui/OverlayShape.h"

#include <QPainter>
#include <QPolygonF>

#include <cmath>
#include <vector>

namespace velorin {
namespace {

/// A running mean along one line of bytes; three of them are as good as a Gaussian.
void blurLine(uchar* bytes, qsizetype step, int count, int radius, std::vector<uchar>& line) {
    line.resize(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        line[static_cast<std::size_t>(i)] = bytes[i * step];
    const int width = 2 * radius + 1;
    const auto at = [&](int i) { return i >= 0 && i < count ? line[static_cast<std::size_t>(i)] : 0; };
    int sum = 0;
    for (int i = -radius; i < radius; ++i)
        sum += at(i);
    for (int i = 0; i < count; ++i) {
        sum += at(i + radius);
        bytes[i * step] = static_cast<uchar>(sum / width);
        sum -= at(i - radius);
    }
}

void blur(QImage& mask, int radius) {
    std::vector<uchar> line;
    for (int round = 0; round < 3; ++round) {
        for (int y = 0; y < mask.height(); ++y)
            blurLine(mask.scanLine(y), 1, mask.width(), radius, line);
        for (int x = 0; x < mask.width(); ++x)
            blurLine(mask.bits() + x, mask.bytesPerLine(), mask.height(), radius, line);
    }
}

/// The pixels of a row from the first to the last of which more than half is covered.
QRect coveredRow(const QImage& mask, int y) {
    constexpr uchar half = 128;
    const auto* row = mask.constScanLine(y);
    int first = 0;
    int end = mask.width();
    while (first < end && row[first] < half)
        ++first;
    while (end > first && row[end - 1] < half)
        --end;
    return {first, y, end - first, 1};
}

QImage coloured(const QImage& mask, double opacity) {
    QImage image(mask.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < mask.height(); ++y) {
        const auto* from = mask.constScanLine(y);
        auto* to = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < mask.width(); ++x)
            to[x] = static_cast<QRgb>(std::lround(from[x] * opacity)) << 24;
    }
    return image;
}

} // namespace

QPainterPath continuousRect(const QRectF& rect, double radius) {
    constexpr double reach = 1.4;     // how much earlier than a round corner it begins, in radii
    constexpr double tension = 0.225; // so that its middle lies where that of a round corner does
    QPainterPath path;
    if (reach * radius > std::min(rect.width(), rect.height()) / 2) {
        path.addRoundedRect(rect, radius, radius);
        return path;
    }
    const double far = reach * radius;
    const double near = far * tension;
    const double l = rect.left();
    const double t = rect.top();
    const double r = rect.right();
    const double b = rect.bottom();
    path.moveTo(l + far, t);
    path.lineTo(r - far, t);
    path.cubicTo(r - near, t, r, t + near, r, t + far);
    path.lineTo(r, b - far);
    path.cubicTo(r, b - near, r - near, b, r - far, b);
    path.lineTo(l + far, b);
    path.cubicTo(l + near, b, l, b - near, l, b - far);
    path.lineTo(l, t + far);
    path.cubicTo(l, t + near, l + near, t, l + far, t);
    path.closeSubpath();
    return path;
}

QRegion pixelsOf(const QPainterPath& path, double scale) {
    const QPainterPath outline = QTransform::fromScale(scale, scale).map(path);
    const QRect bounds = outline.boundingRect().toAlignedRect();
    QImage mask(bounds.size(), QImage::Format_Alpha8);
    mask.fill(0);
    {
        QPainter painter(&mask);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-bounds.topLeft());
        painter.fillPath(outline, Qt::black);
    }
    std::vector<QRect> rows;
    for (int y = 0; y < mask.height(); ++y) {
        const auto row = coveredRow(mask, y).translated(bounds.topLeft());
        if (row.isEmpty())
            continue;
        if (!rows.empty() && rows.back().left() == row.left() && rows.back().right() == row.right())
            rows.back().setBottom(row.bottom());
        else
            rows.push_back(row);
    }
    QRegion region;
    region.setRects(rows.data(), static_cast<int>(rows.size()));
    return region;
}

QImage shadowOf(const QPainterPath& path, QSizeF size, double scale, double blurRadius, double offset,
                double opacity) {
    QImage mask((size * scale).toSize(), QImage::Format_Alpha8);
    mask.fill(0);
    {
        QPainter painter(&mask);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale, scale);
        painter.translate(0, offset);
        painter.fillPath(path, Qt::black);
    }
    // Three means of this radius together reach as far as the blur.
    blur(mask, std::max(1, static_cast<int>(std::lround(blurRadius * scale / 3))));
    QImage shadow = coloured(mask, opacity);
    shadow.setDevicePixelRatio(scale);
    return shadow;
}

} // namespace velorin

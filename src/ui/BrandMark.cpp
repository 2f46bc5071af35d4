#include "ui/BrandMark.h"

#include <QImageReader>
#include <QPainter>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

// The picture lies in a library that is linked statically; without this word it would be left out.
static void initPictures() { Q_INIT_RESOURCE(resources); }

namespace velorin::BrandMark {
namespace {

constexpr double width = 30;
constexpr double height = 20;
constexpr double shadeOpacity = 0.3;

/// The mark as a stencil; null without the picture.
QImage stencil(const QSize& pixels) {
    initPictures();
    QImageReader reader(u":/velorin/mark.svg"_s, "svg");
    reader.setScaledSize(pixels);
    return reader.read();
}

/// The width at which the mark fills the square, with its bars on whole pixels: they stand a sixth of it
/// apart.
double trayWidth(int side) { return 6 * std::round(side * 1.1 / 6); }

/// Panels are light or dark and do not tell: a thin shade around the mark parts it from a light one.
QImage traySquare(int side, const QColor& color) {
    QImage square(side, side, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    const QImage mark = image(trayWidth(side), color);
    const QImage shade = image(trayWidth(side), QColor(Qt::black));
    const QPoint corner((side - mark.width()) / 2, (side - mark.height()) / 2);
    QPainter painter(&square);
    painter.setOpacity(shadeOpacity);
    for (const QPoint& aside : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)})
        painter.drawImage(corner + aside, shade);
    painter.setOpacity(1);
    painter.drawImage(corner, mark);
    return square;
}

} // namespace

QImage image(const QColor& color, double scale) { return image(width, color, scale); }

QImage image(double size, const QColor& color, double scale) {
    const QSize pixels = (QSizeF(size, size * height / width) * scale).toSize();
    QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    if (const QImage mark = stencil(pixels); !mark.isNull()) {
        QPainter painter(&picture);
        painter.drawImage(0, 0, mark);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(picture.rect(), color);
    }
    picture.setDevicePixelRatio(scale);
    return picture;
}

QIcon trayIcon(const QColor& color) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 44, 48, 64})
        icon.addPixmap(QPixmap::fromImage(traySquare(side, color)));
    return icon;
}

} // namespace velorin::BrandMark

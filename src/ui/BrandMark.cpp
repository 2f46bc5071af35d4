#include "ui/BrandMark.h"

#include <QImageReader>
#include <QPainter>

using namespace Qt::Literals::StringLiterals;

// The picture lies in a library that is linked statically; without this word it would be left out.
static void initPictures() { Q_INIT_RESOURCE(resources); }

namespace velorin::BrandMark {
namespace {

constexpr double width = 30;
constexpr double height = 20;

/// The mark as a stencil; null without the picture.
QImage stencil(const QSize& pixels) {
    initPictures();
    QImageReader reader(u":/velorin/mark.svg"_s, "svg");
    reader.setScaledSize(pixels);
    return reader.read();
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
    for (const int side : {16, 22, 24, 32, 44, 48, 64}) {
        // A little larger than the square's width would give: the mark has air of its own at both sides.
        const QImage mark = image(side * 1.15, color);
        QPixmap square(side, side);
        square.fill(Qt::transparent);
        QPainter painter(&square);
        painter.drawImage((side - mark.width()) / 2, (side - mark.height()) / 2, mark);
        painter.end();
        icon.addPixmap(square);
    }
    return icon;
}

} // namespace velorin::BrandMark

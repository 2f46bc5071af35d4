#include "ui/OverlayItems.h"

#include "text/Graphemes.h"
#include "ui/OverlayShape.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QIcon>
#include <QPaintDevice>
#include <QPainter>
#include <QQuickWindow>
#include <QTextLayout>
#include <QTextOption>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr double pointsPerPixel = 0.75;
constexpr double textFade = 0.05; // the share of the width over which the beginning fades

QColor withOpacity(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return color;
}

/// Keeps of what was painted what the gradient covers.
void mask(QPainter& painter, const QRectF& rect, const QLinearGradient& gradient) {
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(rect, gradient);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

/// The device pixels that stand for one unit of the item.
double scaleOf(const QQuickItem& item) {
    return item.window() != nullptr ? item.window()->effectiveDevicePixelRatio() : 1.0;
}

} // namespace

void registerOverlayItems() {
    static const bool once = [] {
        qmlRegisterType<WaveformView>("Velorin", 1, 0, "WaveformView");
        qmlRegisterType<LiveTextView>("Velorin", 1, 0, "LiveTextView");
        qmlRegisterType<OverlayBackdrop>("Velorin", 1, 0, "OverlayBackdrop");
        qmlRegisterType<TargetAppIcon>("Velorin", 1, 0, "TargetAppIcon");
        return true;
    }();
    (void)once;
}

WaveformView::WaveformView(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &WaveformView::changed, this, [this] { update(); });
}

void WaveformView::setContent(QObject* content) {
    content_ = qobject_cast<OverlayContent*>(content);
    if (content_)
        connect(content_, &OverlayContent::levelsChanged, this, &WaveformView::takeLevels);
    takeLevels();
    Q_EMIT changed();
}

void WaveformView::takeLevels() {
    levels_ = content_ ? content_->levels() : QList<float>();
    update();
}

void WaveformView::paint(QPainter* painter) {
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    const WaveformShape shape{.barCount = barCount_,
                              .isIdle = idle_,
                              .fixedBarWidth =
                                  fixedBarWidth_ > 0 ? std::optional(fixedBarWidth_) : std::nullopt,
                              .spacing = spacing_,
                              .minBarHeight = minBarHeight_};
    for (const auto& bar : waveformBars(width(), height(), levels_, shape)) {
        QLinearGradient gradient(0, bar.y, 0, bar.y + bar.height);
        gradient.setColorAt(0, withOpacity(tip_, bar.opacity));
        gradient.setColorAt(1, withOpacity(base_, bar.opacity));
        painter->setBrush(gradient);
        painter->drawRoundedRect(QRectF(bar.x, bar.y, bar.width, bar.height), bar.radius, bar.radius);
    }
    if (fade_ <= 0)
        return;
    QLinearGradient ends(0, 0, width(), 0);
    ends.setColorAt(0, Qt::transparent);
    ends.setColorAt(fade_, Qt::black);
    ends.setColorAt(1 - fade_, Qt::black);
    ends.setColorAt(1, Qt::transparent);
    mask(*painter, boundingRect(), ends);
}

LiveTextView::LiveTextView(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &LiveTextView::changed, this, &LiveTextView::layOut);
}

QFont LiveTextView::font() const {
    QFont font = QGuiApplication::font();
    font.setPointSizeF(pixelSize_ * pointsPerPixel);
    return font;
}

void LiveTextView::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickPaintedItem::geometryChange(now, before);
    if (now.size() != before.size())
        layOut();
}

void LiveTextView::layOut() {
    const QFontMetricsF metrics(font());
    isRightToLeft_ = text_.isRightToLeft();
    // The first letter of what fits stands behind the fade, where it can be read.
    const double inset = fades_ ? width() * textFade : 0;
    // The caret stands behind the text, which where it ends at the left is beside the dot.
    const double behind = isRightToLeft_ ? 8 : 3;
    const double room = std::max(0.0, width() - behind);
    const double whole = metrics.horizontalAdvance(text_);
    const bool fits = whole <= room - inset;
    // Where it does not, an ellipsis stands in the fade, also in the place of no more than a letter.
    line_ = fits ? text_ : metrics.elidedText(text_, Qt::ElideLeft, std::min(room, whole - 1));
    const double used = metrics.horizontalAdvance(line_);
    const double start = fits ? inset : std::max(0.0, room - used);
    left_ = isRightToLeft_ ? width() - start - used : start;
    caretX_ = isRightToLeft_ ? left_ - 3 : left_ + used + 1;
    baseline_ = (height() - metrics.height()) / 2 + metrics.ascent();
    Q_EMIT laidOut();
    update();
}

void LiveTextView::paint(QPainter* painter) {
    painter->setRenderHint(QPainter::TextAntialiasing);
    painter->setFont(font());
    painter->setPen(color_);
    painter->setLayoutDirection(isRightToLeft_ ? Qt::RightToLeft : Qt::LeftToRight);
    painter->drawText(QPointF(left_, baseline_), line_);
    if (!fades_)
        return;
    QLinearGradient beginning(isRightToLeft_ ? width() : 0, 0, isRightToLeft_ ? 0 : width(), 0);
    beginning.setColorAt(0, Qt::transparent);
    beginning.setColorAt(textFade, Qt::black);
    mask(*painter, boundingRect(), beginning);
}

OverlayBackdrop::OverlayBackdrop(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &OverlayBackdrop::changed, this, [this] { update(); });
}

/// The window is cut to the shape in whole pixels, and a half covered one would be half black: all that lies
/// outside of the glass has the colour of the edge.
void OverlayBackdrop::paintShaped(QPainter& painter, const QRectF& look) const {
    QColor opaque = fill_;
    opaque.setAlpha(255);
    painter.fillRect(boundingRect(), opaque);
    painter.fillRect(boundingRect(), edge_);
    const auto glass = [&](double inset, const QColor& color) {
        painter.fillPath(continuousRect(look.adjusted(inset, inset, -inset, -inset), cornerRadius_ - inset),
                         color);
    };
    glass(1, opaque);
    glass(1, border_);
    glass(2, opaque);
}

void OverlayBackdrop::paint(QPainter* painter) {
    painter->setRenderHint(QPainter::Antialiasing);
    const double padding = themeNumber(u"overlayPadding");
    const QRectF look = boundingRect().adjusted(padding, padding, -padding, -padding);
    const auto outline = continuousRect(look, cornerRadius_);
    const auto stroke = [&](const QRectF& rect, double radius, const QColor& color) {
        painter->strokePath(continuousRect(rect, radius), QPen(color, 1));
    };
    if (!composited_) {
        paintShaped(*painter, look);
        return;
    }
    painter->drawImage(QPointF(0, 0),
                       shadowOf(outline, boundingRect().size(), scaleOf(*this), themeNumber(u"shadowRadius"),
                                themeNumber(u"shadowOffset"), themeNumber(u"shadowOpacity")));
    // The shadow lies around the glass, not below it: it would darken what shines through.
    painter->setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter->fillPath(outline, Qt::black);
    painter->setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter->fillPath(outline, fill_);
    stroke(look.adjusted(-0.5, -0.5, 0.5, 0.5), cornerRadius_ + 0.5, edge_);
    stroke(look.adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius_ - 0.5, border_);
}

TargetAppIcon::TargetAppIcon(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &TargetAppIcon::changed, this, [this] { update(); });
}

void TargetAppIcon::paint(QPainter* painter) {
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const double radius = width() * 0.25;
    const QIcon icon = icon_.startsWith(u'/') ? QIcon(icon_) : QIcon::fromTheme(icon_);
    const QPixmap picture =
        icon_.isEmpty() ? QPixmap() : icon.pixmap(boundingRect().size().toSize(), scaleOf(*this));
    if (picture.isNull()) {
        paintLetter(*painter);
    } else {
        QPainterPath corners;
        corners.addRoundedRect(boundingRect(), radius, radius);
        painter->setClipPath(corners);
        painter->drawPixmap(boundingRect(), picture, picture.rect());
        painter->setClipping(false);
    }
    if (isError_) {
        constexpr double line = 1.5;
        const QRectF frame = boundingRect().adjusted(line / 2, line / 2, -line / 2, -line / 2);
        QPainterPath path;
        path.addRoundedRect(frame, radius - line / 2, radius - line / 2);
        painter->strokePath(path, QPen(withOpacity(red_, 0.85), line));
    }
}

void TargetAppIcon::paintLetter(QPainter& painter) const {
    painter.setPen(Qt::NoPen);
    QColor ground = secondary_;
    ground.setAlphaF(0.22F);
    painter.setBrush(ground);
    painter.drawRoundedRect(boundingRect(), width() * 0.25, width() * 0.25);
    QFont font = QGuiApplication::font();
    font.setPointSizeF(width() * 0.55 * pointsPerPixel);
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    painter.setPen(secondary_);
    painter.drawText(boundingRect(), Qt::AlignCenter, Graphemes::first(name_).toString());
}

} // namespace velorin

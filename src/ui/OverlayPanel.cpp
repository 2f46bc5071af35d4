#include "ui/OverlayPanel.h"

#include "ui/OverlayShape.h"
#include "ui/Theme.h"

#include <QGuiApplication>
#include <QQmlError>
#include <QScreen>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

struct Look {
    double width, height, radius;
};

Look lookOf(OverlayStyle style) {
    return style == OverlayStyle::capsule
               ? Look{themeNumber(u"capsuleWidth"), themeNumber(u"capsuleHeight"),
                      themeNumber(u"capsuleRadius")}
               : Look{themeNumber(u"cardWidth"), themeNumber(u"cardHeight"), themeNumber(u"cardRadius")};
}

/// A screen's corner is in device pixels, its size in units of the views.
QRect deviceGeometry(const QScreen& screen) {
    return {screen.geometry().topLeft(),
            (QSizeF(screen.geometry().size()) * screen.devicePixelRatio()).toSize()};
}

QRectF inUnits(const QRect& device, const QScreen& screen) {
    const QPointF corner = screen.geometry().topLeft();
    const double scale = screen.devicePixelRatio();
    return {corner + (QPointF(device.topLeft()) - corner) / scale, QSizeF(device.size()) / scale};
}

} // namespace

OverlayPanel::OverlayPanel(QQmlEngine& engine, FloatingWindows& windows)
    : QQuickView(&engine, nullptr), windows_(windows), fading_(this, "opacity") {
    setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::X11BypassWindowManagerHint | Qt::WindowStaysOnTopHint |
             Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput);
    setColor(Qt::transparent);
    setResizeMode(QQuickView::SizeRootObjectToView);
    setTitle(u"Velorin"_s);
    connect(&fading_, &QPropertyAnimation::finished, this, [this] {
        if (isWanted_)
            return;
        hide();
        Q_EMIT disappeared();
    });
    for (const auto signal : {&QGuiApplication::screenAdded, &QGuiApplication::screenRemoved})
        connect(qApp, signal, this, &OverlayPanel::refit, Qt::QueuedConnection);
    connect(qApp, &QGuiApplication::screenAdded, this, &OverlayPanel::follow);
    for (auto* screen : QGuiApplication::screens())
        follow(screen);
    connect(qApp, &QGuiApplication::primaryScreenChanged, this, &OverlayPanel::refit, Qt::QueuedConnection);
    connect(this, &QWindow::screenChanged, this, &OverlayPanel::refit, Qt::QueuedConnection);
    create();
    windows_.adopt(winId());
}

void OverlayPanel::follow(QScreen* screen) {
    connect(screen, &QScreen::geometryChanged, this, &OverlayPanel::refit, Qt::QueuedConnection);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, &OverlayPanel::refit, Qt::QueuedConnection);
}

QSize OverlayPanel::sizeOf(OverlayStyle style) {
    const auto look = lookOf(style);
    const double margin = 2 * themeNumber(u"overlayPadding");
    return QSizeF(look.width + margin, look.height + margin).toSize();
}

void OverlayPanel::host(OverlayStyle style) {
    style_ = style;
    resize(sizeOf(style));
    setSource(QUrl(u"qrc:/velorin/views/HUDView.qml"_s));
    for (const auto& error : errors())
        qWarning("%s", qUtf8Printable(error.toString()));
    refreshShape();
}

QScreen* OverlayPanel::screenOf(const std::optional<RunningApplication>& target) const {
    if (const auto frame = target ? windows_.frame(target->window) : std::nullopt)
        for (auto* screen : QGuiApplication::screens())
            if (deviceGeometry(*screen).contains(frame->center()))
                return screen;
    return QGuiApplication::primaryScreen();
}

void OverlayPanel::place(const std::optional<RunningApplication>& target) {
    target_ = target;
    auto* on = screenOf(target);
    if (on == nullptr || on->geometry().isEmpty())
        return;
    setScreen(on);
    const QRectF area = inUnits(windows_.workArea(deviceGeometry(*on)), *on);
    const QSizeF size = sizeOf(style_);
    setGeometry(QRect(QPointF(area.center().x() - size.width() / 2,
                              area.bottom() - themeNumber(u"overlayBottom") - size.height())
                          .toPoint(),
                      size.toSize()));
}

bool OverlayPanel::isOutgrown() const { return scale_ > 0 && scale_ != devicePixelRatio(); }

void OverlayPanel::refit() {
    if (!isVisible())
        return;
    if (isOutgrown())
        return Q_EMIT outgrown();
    place(target_);
    refreshShape();
}

void OverlayPanel::refreshShape() {
    QList<QRect> shape;
    if (!windows_.isComposited()) {
        const auto look = lookOf(style_);
        const double padding = themeNumber(u"overlayPadding");
        const auto pixels =
            pixelsOf(continuousRect(QRectF(padding, padding, look.width, look.height), look.radius),
                     devicePixelRatio());
        shape = QList<QRect>(pixels.begin(), pixels.end());
    }
    windows_.setShape(winId(), shape);
}

void OverlayPanel::appear() {
    fading_.stop();
    isWanted_ = true;
    scale_ = devicePixelRatio();
    setOpacity(0);
    refreshShape();
    show();
    windows_.raise(winId());
    fade(1, static_cast<int>(themeNumber(u"overlayFadeIn")));
}

void OverlayPanel::stay() {
    fading_.stop();
    isWanted_ = true;
}

void OverlayPanel::disappear() {
    isWanted_ = false;
    if (isVisible())
        fade(0, static_cast<int>(themeNumber(u"overlayFadeOut")));
}

void OverlayPanel::fade(double to, int milliseconds) {
    fading_.stop();
    fading_.setStartValue(opacity());
    fading_.setEndValue(to);
    fading_.setDuration(milliseconds);
    fading_.start();
}

} // namespace velorin

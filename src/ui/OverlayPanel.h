/// The window of the overlay: it floats near the bottom of the screen, takes neither focus nor clicks, and is
/// cut to its shape where nothing draws transparency. Made hidden; made once.
///
///     OverlayPanel panel(engine, windows);
///     panel.host(OverlayStyle::card);
///     panel.place(model.targetApp());
///     panel.appear();
///
/// Main thread.
#pragma once

#include "core/ModelTypes.h"
#include "platform/FloatingWindows.h"
#include "platform/RunningApplication.h"

#include <QPropertyAnimation>
#include <QQuickView>

namespace velorin {

class OverlayPanel final : public QQuickView {
    Q_OBJECT
public:
    OverlayPanel(QQmlEngine& engine, FloatingWindows& windows);

    /// Fills the window with the views of a look, at its size.
    void host(OverlayStyle style);

    /// Puts it above the bottom of the work area, on the monitor where the application's window is. Without
    /// any monitor it stays where it is.
    void place(const std::optional<RunningApplication>& target);

    /// Fades in from nothing, also when it was there already.
    void appear();
    /// It will appear again at once: a fade ends here, and nobody is told that it has gone.
    void stay();
    /// Fades out, then leaves the screen. Nothing happens to a window that is not on it.
    void disappear();

    /// Whether it is shown, and not about to leave.
    [[nodiscard]] bool isWanted() const { return isWanted_; }

    /// Whether everything has become larger or smaller since it was first shown. What it is drawn on keeps
    /// its pixels as long as the window has the same size in units, so only a new panel is right.
    [[nodiscard]] bool isOutgrown() const;

    /// Fits the window's outline to whether transparency is drawn.
    void refreshShape();

    /// The window's size in a look, its margin for the shadow included.
    [[nodiscard]] static QSize sizeOf(OverlayStyle style);

Q_SIGNALS:
    /// The end of `disappear()`.
    void disappeared();
    /// The scale changed while it is shown.
    void outgrown();

private:
    void fade(double to, int milliseconds);
    void follow(QScreen* screen);
    void refit();
    [[nodiscard]] QScreen* screenOf(const std::optional<RunningApplication>& target) const;

    FloatingWindows& windows_;
    OverlayStyle style_ = OverlayStyle::capsule;
    std::optional<RunningApplication> target_;
    QPropertyAnimation fading_;
    bool isWanted_ = false;
    double scale_ = 0; ///< At which it was first shown; 0 before.
};

} // namespace velorin

/// What a small window of ours that floats above all others needs to know of the screen, and ask of it.
/// Windows are numbered as the desktop numbers them; all lengths are device pixels. Main thread; every
/// operation has a deadline, and one that fails reads as "unknown" or does nothing.
#pragma once

#include "platform/Subscription.h"

#include <QList>
#include <QRect>

#include <functional>
#include <optional>

namespace velorin {

class FloatingWindows {
public:
    virtual ~FloatingWindows() = default;

    /// Makes a window of ours, not yet shown, one that passes every click on and is no business of the window
    /// manager and the compositor.
    virtual void adopt(quint64 window) = 0;

    /// Brings it above all others, full-screen ones included.
    virtual void raise(quint64 window) = 0;

    /// Cuts the window to these rectangles; an empty list makes it whole again.
    virtual void setShape(quint64 window, const QList<QRect>& shape) = 0;

    /// Whether windows are drawn with their transparency.
    [[nodiscard]] virtual bool isComposited() const = 0;
    virtual Subscription onCompositingChanged(std::function<void()> action) = 0;

    /// Where a window of any program stands; nothing when it is gone.
    [[nodiscard]] virtual std::optional<QRect> frame(quint64 window) = 0;

    /// The monitor without its panels and docks.
    [[nodiscard]] virtual QRect workArea(const QRect& monitor) = 0;
};

} // namespace velorin

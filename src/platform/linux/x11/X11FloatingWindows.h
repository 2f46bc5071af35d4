/// Floating windows on X11: the overlay is outside the window manager's hands, so it takes no focus, stands
/// on every workspace and above all that is managed. Main thread.
#pragma once

#include "platform/FloatingWindows.h"
#include "platform/linux/x11/X11SelectionOwners.h"

namespace velorin {

class X11FloatingWindows final : public FloatingWindows {
public:
    X11FloatingWindows();

    void adopt(quint64 window) override;
    void raise(quint64 window) override;
    void setShape(quint64 window, const QList<QRect>& shape) override;
    [[nodiscard]] bool isComposited() const override;
    Subscription onCompositingChanged(std::function<void()> action) override;
    [[nodiscard]] std::optional<QRect> frame(quint64 window) override;
    [[nodiscard]] QRect workArea(const QRect& monitor) override;

private:
    [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window, const char* name,
                                                     Deadline deadline);
    [[nodiscard]] std::vector<std::vector<std::uint32_t>> struts(Deadline deadline);

    std::unique_ptr<XConnection> connection_;
    X11SelectionOwners owners_;
};

/// What is left of the monitor when each strut is taken away: the twelve numbers of _NET_WM_STRUT_PARTIAL,
/// which count from the edges of the whole screen. A strut that lies along another monitor takes nothing.
[[nodiscard]] QRect withoutStruts(const QRect& monitor, const QSize& screen,
                                  const std::vector<std::vector<std::uint32_t>>& struts);

} // namespace velorin

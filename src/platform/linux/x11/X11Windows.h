/// The windows of an X session, as far as a workspace needs them: which application is in front, and asking
/// the window manager to bring one there. Main thread; every operation answers within a deadline.
#pragma once

#include "platform/RunningApplication.h"
#include "platform/linux/DesktopFiles.h"
#include "platform/linux/x11/ClientProcesses.h"

namespace velorin {

class X11Windows final {
public:
    X11Windows();

    /// Nothing without a server, or when no window has the keyboard.
    [[nodiscard]] std::optional<RunningApplication> frontmostApplication();

    /// Asks for the application's window, or for its topmost one where it is not known which. Does not wait
    /// for it; the window manager may decline.
    void activate(const RunningApplication& application);

    /// Waits until one of the application's windows is in front and has the keyboard.
    [[nodiscard]] bool awaitFrontmost(const RunningApplication& application, Deadline deadline);

    /// Of the window that was in front, or of the topmost one.
    [[nodiscard]] std::optional<QString> titleOf(const RunningApplication& application);

private:
    static constexpr std::uint32_t longestProperty = 4096;

    [[nodiscard]] xcb_window_t windowOf(const RunningApplication& application, Deadline deadline);
    void listenToRoot(std::uint32_t events);
    [[nodiscard]] bool lookUntilFront(const RunningApplication& application, Deadline deadline);
    [[nodiscard]] bool isInFront(const RunningApplication& application, Deadline deadline);
    [[nodiscard]] xcb_window_t focusedWindow(Deadline deadline);
    [[nodiscard]] xcb_window_t activeWindow(Deadline deadline);
    [[nodiscard]] xcb_window_t focusedTopLevel(Deadline deadline);
    [[nodiscard]] RunningApplication applicationOf(xcb_window_t window, Deadline deadline);
    [[nodiscard]] xcb_window_t topmostWindowOf(qint64 process, Deadline deadline);
    [[nodiscard]] qint64 processOf(xcb_window_t window, Deadline deadline);
    /// The first of it: `longest` in units of four bytes.
    [[nodiscard]] QByteArray property(xcb_window_t window, const char* name, Deadline deadline,
                                      std::uint32_t longest = longestProperty);
    [[nodiscard]] std::uint32_t numberIn(xcb_window_t window, const char* name, Deadline deadline);

    std::unique_ptr<XConnection> connection_;
    std::unique_ptr<ClientProcesses> processes_;
    DesktopFiles desktopFiles_;
};

} // namespace velorin

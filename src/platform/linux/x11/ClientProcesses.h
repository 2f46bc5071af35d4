/// Which process stands behind a window, as the server knows it, and whether that one only watches the
/// clipboard.
#pragma once

#include "platform/linux/x11/XConnection.h"

#include <cstdint>
#include <string_view>

namespace velorin {

class ClientProcesses final {
public:
    /// `patience`: for each answer; a server that takes longer counts as one that cannot tell.
    explicit ClientProcesses(XConnection& connection, std::chrono::milliseconds patience = serverDeadline);

    /// 0 where the server cannot tell: a client from another machine, or no X-Resource extension.
    [[nodiscard]] std::int64_t processOf(xcb_window_t window, Deadline deadline);

    /// Whether the server still has a connection of this process. False where it cannot tell.
    [[nodiscard]] bool hasConnections(std::int64_t process, Deadline deadline);

    /// Whether this is a program that reads whatever comes to the clipboard, to keep it.
    [[nodiscard]] bool isClipboardManager(xcb_window_t window, std::int64_t process, Deadline deadline);

private:
    XConnection& connection_;
    bool canAsk_;
};

/// By the name that the kernel gives the process.
[[nodiscard]] bool isClipboardManagerName(std::string_view name);

} // namespace velorin

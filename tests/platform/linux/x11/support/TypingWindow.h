/// A window that has the keyboard and takes down the text that is typed into it, as toolkits do: in the order
/// of the events, with the map that it last heard of.
#pragma once

#include "tests/platform/linux/x11/support/TestWindow.h"

#include <QString>

#include <memory>

namespace velorin {

class TypingWindow final {
public:
    TypingWindow();
    ~TypingWindow();

    void focus() { window_.focus(); }
    /// What was typed since the last call; waits until it is so many UTF-16 units or nothing more comes.
    [[nodiscard]] QString text(qsizetype units);
    /// Whether keys have come that nobody asked for.
    [[nodiscard]] bool hasMore();

private:
    struct Map;

    void read(const xcb_generic_event_t& event, QString& text);

    TestWindow window_;
    std::unique_ptr<Map> map_;
};

/// Switches the layout as a desktop's switch does.
void lockGroup(XConnection& connection, int group);

} // namespace velorin

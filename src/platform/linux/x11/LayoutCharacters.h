/// Which keys give which characters in the layout that is in force, with the locks as they are.
///
///     const auto layouts = LayoutCharacters::read(connection, deadline);
///     const auto* stroke = layouts.front().strokeFor(U'ß');       // null: no single key of this layout
///     gives it
///
/// Dead keys give no character here: they would take two strokes, and some programs handle them in their own
/// way.
#pragma once

#include "platform/linux/x11/XConnection.h"

#include <map>
#include <optional>
#include <xkbcommon/xkbcommon.h>

namespace velorin {

/// A key, and the modifier keys that must be down for it.
struct Stroke {
    xcb_keycode_t key = 0;
    std::vector<xcb_keycode_t> modifiers;

    bool operator==(const Stroke&) const = default;
};

class LayoutCharacters final {
public:
    /// What a change of which makes the table stale.
    struct Mode {
        std::uint32_t group = 0;
        std::uint32_t lockedModifiers = 0;

        bool operator==(const Mode&) const = default;
    };

    /// Asks the server for the map of the keyboard that synthetic keys come from. A table for each of its
    /// layouts, that which is in force first; none when it does not answer.
    [[nodiscard]] static std::vector<LayoutCharacters> read(const XConnection& connection, Deadline deadline);
    /// The mode of the moment.
    [[nodiscard]] static std::optional<Mode> modeOf(const XConnection& connection, Deadline deadline);

    LayoutCharacters(xkb_keymap& keymap, Mode mode);

    [[nodiscard]] const Stroke* strokeFor(char32_t character) const;
    [[nodiscard]] Mode mode() const { return mode_; }

private:
    void addKeys(xkb_keymap& keymap, const std::vector<xcb_keycode_t>& modifiers);

    Mode mode_;
    std::map<char32_t, Stroke> strokes_;
};

} // namespace velorin

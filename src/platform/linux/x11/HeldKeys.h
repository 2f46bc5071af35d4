/// The keys that the shortcuts take for held, which are not those that the server does: a key that was
/// swallowed is up there, and the flags of a modifier say of a key that comes up while its twin is held that
/// it stays down. A value type.
#pragma once

#include "platform/linux/x11/KeyboardMap.h"
#include "platform/linux/x11/TapKeys.h"

#include <map>

namespace velorin {

class HeldKeys final {
public:
    void press(xcb_keycode_t key, std::uint16_t virtualCode);
    /// Gives the virtual code with which it was pressed; it must be down.
    std::uint16_t release(xcb_keycode_t key);
    /// A modifier that is down was swallowed, so that the server holds it for up.
    void hide(xcb_keycode_t key) { hidden_.set(key); }

    /// The shortcuts were told flags alone: they take both keys of a pair for down.
    void assumeTwins(const TapKeys& keys);
    /// The shortcuts begin anew: no key seems down any more that is not.
    void forgetTwins() { seemDown_.reset(); }

    [[nodiscard]] bool isDown(xcb_keycode_t key) const { return down_.contains(key); }
    /// By their virtual codes.
    [[nodiscard]] const std::map<xcb_keycode_t, std::uint16_t>& down() const { return down_; }
    /// Down, or taken for it.
    [[nodiscard]] KeySet all() const;
    [[nodiscard]] std::uint64_t flags() const;

    /// Modifiers that count as held for the shortcuts and not for the server.
    [[nodiscard]] KeySet unseen() const { return hidden_ | seemDown_; }
    /// Modifiers of which one more release, that we may not have heard of yet, makes such ones.
    [[nodiscard]] KeySet twins() const;

private:
    std::map<xcb_keycode_t, std::uint16_t> down_;
    KeySet hidden_;
    KeySet seemDown_; ///< They came up while their twin was down.
};

} // namespace velorin

/// The grabs that stand in the server: those that the bindings ask for, and, while a bound key is down, those
/// of all other modifiers, which a running shortcut hides from applications.
#pragma once

#include "platform/linux/x11/GrabPlan.h"
#include "platform/linux/x11/SharedKeyState.h"
#include "platform/linux/x11/TapConnections.h"

#include <xcb/xinput.h>

namespace velorin {

class TapGrabs final {
public:
    TapGrabs(const TapConnections& connections, SharedKeyState& shared);
    ~TapGrabs();
    TapGrabs(const TapGrabs&) = delete;
    TapGrabs& operator=(const TapGrabs&) = delete;

    /// Changes what stands to what is wanted, and no more. What somebody else holds is logged and left.
    void apply(const GrabPlan& plan, const TapKeys& keys);

    /// From the next answer on, until `releaseModifiers`.
    void grabModifiers(const KeySet& modifiers);
    void releaseModifiers();
    void releaseModifier(xcb_keycode_t key);

    /// Whether a press of this key may come through a grab of ours.
    [[nodiscard]] bool isGrabbed(xcb_keycode_t key) const { return isBound(key) || modifiers_[key]; }
    [[nodiscard]] bool isBound(xcb_keycode_t key) const { return plan_.contains(key); }

private:
    [[nodiscard]] xcb_input_xi_passive_grab_device_cookie_t request(xcb_keycode_t key,
                                                                    const std::vector<std::uint32_t>& states);
    void ungrab(xcb_keycode_t key, const std::vector<std::uint32_t>& states);
    void publish() const;

    const TapConnections& connections_;
    SharedKeyState& shared_;
    GrabPlan plan_;
    KeySet modifiers_;
};

} // namespace velorin

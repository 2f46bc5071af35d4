/// Asks for events of the input extension on the root window.
#pragma once

#include "platform/linux/x11/XConnection.h"

#include <array>
#include <cstring>
#include <xcb/xinput.h>

namespace velorin {

/// `device`: one, or all, or all masters. Replaces what was asked for of that device before.
inline void selectInput(const XConnection& connection, std::uint16_t device, std::uint32_t events) {
    // The request is a head with the mask right behind it, in one piece.
    const xcb_input_event_mask_t head{device, 1};
    std::array<std::uint32_t, 2> request{0, events};
    static_assert(sizeof head == sizeof request[0]);
    std::memcpy(request.data(), &head, sizeof head);
    xcb_input_xi_select_events(connection.get(), connection.root(), 1,
                               reinterpret_cast<const xcb_input_event_mask_t*>(request.data()));
}

} // namespace velorin

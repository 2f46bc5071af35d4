/// The X server's time: milliseconds in 32 bits, which begin anew after 49.7 days.
#pragma once

#include <chrono>
#include <cstdint>

#include <xcb/xproto.h>

namespace velorin::ServerTime {

/// Whether `time` came before `other`; the two must be less than 24 days apart.
[[nodiscard]] constexpr bool isEarlier(xcb_timestamp_t time, xcb_timestamp_t other) {
    return static_cast<std::int32_t>(time - other) < 0;
}

/// Whether a request that was made at `time` means what is owned since `since`, for as long as `owned`.
/// Nobody asks with a time of days ago: what has been owned for longer is meant by every request.
[[nodiscard]] constexpr bool means(xcb_timestamp_t time, xcb_timestamp_t since,
                                   std::chrono::steady_clock::duration owned) {
    constexpr auto comparable = std::chrono::hours(24 * 20);
    return time == XCB_CURRENT_TIME || owned > comparable || !isEarlier(time, since);
}

} // namespace velorin::ServerTime

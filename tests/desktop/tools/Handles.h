#pragma once

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace velorin::tools {

/// What XCB hands out to be freed: replies, errors and connections.
struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

} // namespace velorin::tools

#include "Launcher.h"

#include "platform/linux/x11/InputSelection.h"

#include <stdexcept>
#include <utility>
#include <xcb/xinput.h>

namespace velorin::tap {

namespace {
constexpr int superKey = 133;
constexpr auto patience = std::chrono::seconds(5);
} // namespace

Launcher::Launcher(Kind kind) : connection_(XConnection::open()) {
    if (!connection_)
        throw std::runtime_error("no X server");
    auto* c = connection_->get();
    (void)connection_->reply<xcb_input_xi_query_version_reply_t>(xcb_input_xi_query_version(c, 2, 2),
                                                                 Deadline(patience));
    if (kind == Kind::listens)
        selectInput(*connection_, XCB_INPUT_DEVICE_ALL_MASTER,
                    XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE);
    else
        xcb_grab_key(c, 0, connection_->root(), XCB_MOD_MASK_ANY, superKey, XCB_GRAB_MODE_ASYNC,
                     XCB_GRAB_MODE_ASYNC);
    connection_->sync(Deadline(patience));
}

int Launcher::opened() {
    connection_->sync(Deadline(patience));
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())}) {
        const int type = event->response_type & 0x7f;
        if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) {
            take(type == XCB_KEY_PRESS, reinterpret_cast<const xcb_key_press_event_t&>(*event).detail);
        } else if (type == XCB_GE_GENERIC) {
            const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(*event);
            take(raw.event_type == XCB_INPUT_RAW_KEY_PRESS, static_cast<int>(raw.detail));
        }
    }
    return std::exchange(opened_, 0);
}

void Launcher::take(bool isPress, int key) {
    if (isPress)
        isAlone_ = key == superKey;
    else if (key == superKey && std::exchange(isAlone_, false))
        ++opened_;
}

} // namespace velorin::tap

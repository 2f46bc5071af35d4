#include "tests/platform/linux/x11/support/PhysicalKeyboard.h"

#include <stdexcept>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

namespace velorin {

namespace {
constexpr auto patience = std::chrono::seconds(5);
}

PhysicalKeyboard::PhysicalKeyboard() : connection_(XConnection::open()) {
    const auto* input = connection_ ? connection_->extension(xcb_input_id) : nullptr;
    if (!input || !connection_->extension(xcb_test_id))
        throw std::runtime_error("no server with XInput and XTEST");
    firstEvent_ = input->first_event;
    auto* c = connection_->get();
    // Before the second version of the extension was asked for, its devices are not let in.
    (void)connection_->reply<xcb_input_xi_query_version_reply_t>(xcb_input_xi_query_version(c, 2, 2),
                                                                 Deadline(patience));
    const auto devices = connection_->reply<xcb_input_xi_query_device_reply_t>(
        xcb_input_xi_query_device(c, XCB_INPUT_DEVICE_ALL), Deadline(patience));
    for (auto info = xcb_input_xi_query_device_infos_iterator(devices.get()); info.rem > 0;
         xcb_input_xi_device_info_next(&info)) {
        const std::string_view name(
            xcb_input_xi_device_info_name(info.data),
            static_cast<std::size_t>(xcb_input_xi_device_info_name_length(info.data)));
        if (info.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD &&
            name.find("XTEST") == std::string_view::npos)
            device_ = info.data->deviceid;
    }
    if (device_ == 0)
        throw std::runtime_error("no keyboard");
}

void PhysicalKeyboard::press(int key) { post(XCB_INPUT_DEVICE_KEY_PRESS, key); }
void PhysicalKeyboard::release(int key) { post(XCB_INPUT_DEVICE_KEY_RELEASE, key); }
void PhysicalKeyboard::sync() { connection_->sync(Deadline(patience)); }

void PhysicalKeyboard::post(int offset, int key) {
    xcb_test_fake_input(connection_->get(), static_cast<std::uint8_t>(firstEvent_ + offset),
                        static_cast<std::uint8_t>(key), XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0,
                        static_cast<std::uint8_t>(device_));
    connection_->flush();
}

} // namespace velorin

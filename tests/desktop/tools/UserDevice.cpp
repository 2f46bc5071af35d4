#include "UserDevice.h"

#include <charconv>
#include <stdexcept>

#include <xcb/xinput.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon.h>

namespace velorin::tools {

namespace {

std::runtime_error failure(std::string_view what, std::string_view name) {
    return std::runtime_error(std::string(what) + " " + std::string(name));
}

} // namespace

UserDevice::UserDevice() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_.get()) != 0)
        throw std::runtime_error("there is no X server");
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
    const auto* input = xcb_get_extension_data(connection_.get(), &xcb_input_id);
    if (input == nullptr || input->present == 0)
        throw std::runtime_error("the X server has no XInput extension");
    firstInputEvent_ = input->first_event;
    keyboard_ = deviceNamed("Xvfb keyboard");
    mouse_ = deviceNamed("Xvfb mouse");
}

uint8_t UserDevice::deviceNamed(std::string_view name) const {
    auto* connection = connection_.get();
    // The server answers only who has said which version of the extension it speaks.
    const Reply<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
    const Reply<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr));
    if (!version || !reply)
        throw std::runtime_error("the X server does not list its devices");
    for (auto each = xcb_input_xi_query_device_infos_iterator(reply.get()); each.rem > 0;
         xcb_input_xi_device_info_next(&each)) {
        const std::string_view found(xcb_input_xi_device_info_name(each.data),
                                     static_cast<size_t>(xcb_input_xi_device_info_name_length(each.data)));
        if (found == name)
            return static_cast<uint8_t>(each.data->deviceid);
    }
    throw failure("the X server has no device", name);
}

uint8_t UserDevice::keyCode(std::string_view name) const {
    if (name.starts_with('#')) {
        uint8_t code = 0;
        const auto end = name.data() + name.size();
        if (std::from_chars(name.data() + 1, end, code).ptr == end && code >= 8)
            return code;
        throw failure("no key code is", name);
    }
    const auto keysym = xkb_keysym_from_name(std::string(name).c_str(), XKB_KEYSYM_NO_FLAGS);
    const auto* setup = xcb_get_setup(connection_.get());
    const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const Reply<xcb_get_keyboard_mapping_reply_t> map(xcb_get_keyboard_mapping_reply(
        connection_.get(), xcb_get_keyboard_mapping(connection_.get(), setup->min_keycode, count), nullptr));
    if (!map || keysym == XKB_KEY_NoSymbol)
        throw failure("no key is called", name);
    const auto* keysyms = xcb_get_keyboard_mapping_keysyms(map.get());
    for (int key = 0; key < count; ++key)
        if (keysyms[key * map->keysyms_per_keycode] == keysym)
            return static_cast<uint8_t>(setup->min_keycode + key);
    throw failure("the keyboard has no key for", name);
}

void UserDevice::post(uint8_t type, uint8_t detail, uint8_t device, int x, int y) {
    auto* connection = connection_.get();
    const auto cookie = xcb_test_fake_input_checked(connection, type, detail, XCB_CURRENT_TIME, root_,
                                                    static_cast<int16_t>(x), static_cast<int16_t>(y), device);
    if (const Reply<xcb_generic_error_t> error(xcb_request_check(connection, cookie)); error)
        throw std::runtime_error("the X server refused the event, error " +
                                 std::to_string(error->error_code));
}

void UserDevice::key(std::string_view name, bool down) {
    const auto type = down ? XCB_INPUT_DEVICE_KEY_PRESS : XCB_INPUT_DEVICE_KEY_RELEASE;
    post(static_cast<uint8_t>(firstInputEvent_ + type), keyCode(name), keyboard_);
}

void UserDevice::move(int x, int y) {
    // The core form: a device's motion would need valuators of its own, and nobody asks whose it is.
    post(XCB_MOTION_NOTIFY, 0, 0, x, y);
}

void UserDevice::button(int number, bool down) {
    const auto type = down ? XCB_INPUT_DEVICE_BUTTON_PRESS : XCB_INPUT_DEVICE_BUTTON_RELEASE;
    post(static_cast<uint8_t>(firstInputEvent_ + type), static_cast<uint8_t>(number), mouse_);
}

} // namespace velorin::tools

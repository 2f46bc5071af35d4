#include "tests/platform/linux/x11/support/TypingWindow.h"

#include "platform/linux/x11/XkbRequests.h"

#include <stdexcept>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

namespace velorin {

namespace {

using namespace std::chrono_literals;

struct Unref {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};

} // namespace

struct TypingWindow::Map {
    explicit Map(XConnection& x) : connection(x), context(xkb_context_new(XKB_CONTEXT_NO_FLAGS)) {
        if (!xkb_x11_setup_xkb_extension(x.get(), 1, 0, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr,
                                         nullptr, &firstEvent, nullptr))
            throw std::runtime_error("no keyboard extension");
        constexpr std::uint16_t events =
            XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
        xcb_xkb_select_events(x.get(), XCB_XKB_ID_USE_CORE_KBD, events, 0, events, 0xff, 0xff, nullptr);
        refresh();
    }

    void refresh() {
        keymap.reset(xkb_x11_keymap_new_from_device(context.get(), connection.get(),
                                                    xkb_x11_get_core_keyboard_device_id(connection.get()),
                                                    XKB_KEYMAP_COMPILE_NO_FLAGS));
        state.reset(xkb_state_new(keymap.get()));
    }

    XConnection& connection;
    std::unique_ptr<xkb_context, Unref> context;
    std::unique_ptr<xkb_keymap, Unref> keymap;
    std::unique_ptr<xkb_state, Unref> state;
    std::uint8_t firstEvent = 0;
};

TypingWindow::TypingWindow() : map_(std::make_unique<Map>(window_.connection())) {}
TypingWindow::~TypingWindow() = default;

QString TypingWindow::text(qsizetype units) {
    QString text;
    if (units > 0)
        window_.waitFor([&](const xcb_generic_event_t& event) {
            read(event, text);
            return text.size() >= units;
        });
    window_.connection().sync(Deadline(5s));
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(window_.connection().get())})
        read(*event, text);
    return text;
}

bool TypingWindow::hasMore() { return !text(0).isEmpty(); }

void TypingWindow::read(const xcb_generic_event_t& event, QString& text) {
    const auto type = event.response_type & 0x7f;
    if (type == map_->firstEvent) {
        map_->refresh();
        return;
    }
    if (type != XCB_KEY_PRESS)
        return;
    const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(event);
    xkb_state_update_mask(map_->state.get(), key.state & 0xffU, 0, 0, key.state >> 13 & 3U, 0, 0);
    const auto symbol = xkb_state_key_get_one_sym(map_->state.get(), key.detail);
    auto character = static_cast<char32_t>(xkb_keysym_to_utf32(symbol));
    if (symbol == XKB_KEY_Return)
        character = U'\n';
    if (character != 0)
        text += QString::fromUcs4(&character, 1);
}

void lockGroup(XConnection& connection, int group) {
    xkb_x11_setup_xkb_extension(connection.get(), 1, 0, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr,
                                nullptr, nullptr, nullptr);
    xcb_xkb_latch_lock_state(connection.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, true,
                             static_cast<std::uint8_t>(group), 0, false, 0);
    connection.sync(Deadline(5s));
}

} // namespace velorin

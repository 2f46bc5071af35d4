#include "platform/linux/x11/LayoutCharacters.h"

#include "platform/linux/x11/XkbRequests.h"

#include <array>
#include <string_view>
#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

namespace velorin {

namespace {

template <auto function>
struct Unref {
    template <typename T>
    void operator()(T* object) const {
        function(object);
    }
};
using ContextPtr = std::unique_ptr<xkb_context, Unref<xkb_context_unref>>;
using KeymapPtr = std::unique_ptr<xkb_keymap, Unref<xkb_keymap_unref>>;
using StatePtr = std::unique_ptr<xkb_state, Unref<xkb_state_unref>>;

bool isKeypad(xkb_keysym_t symbol) { return symbol >= XKB_KEY_KP_Space && symbol <= XKB_KEY_KP_Equal; }

/// What a key gives as text: nothing for those that do something.
char32_t characterOf(xkb_keysym_t symbol) {
    if (symbol == XKB_KEY_Return)
        return U'\n';
    if (isKeypad(symbol)) // means something else in many programs
        return 0;
    const auto character = xkb_keysym_to_utf32(symbol);
    return character < 0x20 || character == 0x7f ? 0 : character;
}

std::optional<xcb_keycode_t> keyOf(xkb_keymap& keymap, xkb_keysym_t wanted) {
    for (auto key = xkb_keymap_min_keycode(&keymap); key <= std::min(xkb_keymap_max_keycode(&keymap), 255U);
         ++key) {
        const xkb_keysym_t* symbols = nullptr;
        if (xkb_keymap_key_get_syms_by_level(&keymap, key, 0, 0, &symbols) == 1 && symbols[0] == wanted)
            return static_cast<xcb_keycode_t>(key);
    }
    return std::nullopt;
}

/// The ways of holding modifiers that reach a character, the simplest first.
std::vector<std::vector<xcb_keycode_t>> waysOf(xkb_keymap& keymap) {
    std::vector<std::vector<xcb_keycode_t>> ways{{}};
    const auto shift = keyOf(keymap, XKB_KEY_Shift_L);
    if (shift)
        ways.push_back({*shift});
    for (const auto symbol : {XKB_KEY_ISO_Level3_Shift, XKB_KEY_ISO_Level5_Shift}) {
        const auto key = keyOf(keymap, symbol);
        if (!key)
            continue;
        ways.push_back({*key});
        if (shift)
            ways.push_back({*shift, *key});
    }
    return ways;
}

/// The device of synthetic keys; the core keyboard where it has no such name.
std::int32_t syntheticKeyboard(const XConnection& connection, Deadline deadline) {
    auto* c = connection.get();
    const auto devices =
        connection.reply<xcb_input_list_input_devices_reply_t>(xcb_input_list_input_devices(c), deadline);
    if (devices) {
        const auto* infos = xcb_input_list_input_devices_devices(devices.get());
        auto names = xcb_input_list_input_devices_names_iterator(devices.get());
        for (int i = 0; i < devices->devices_len; ++i, xcb_str_next(&names)) {
            const std::string_view name(xcb_str_name(names.data),
                                        static_cast<std::size_t>(xcb_str_name_length(names.data)));
            if (name.find("XTEST keyboard") != std::string_view::npos)
                return infos[i].device_id;
        }
    }
    return xkb_x11_get_core_keyboard_device_id(c);
}

} // namespace

std::optional<LayoutCharacters::Mode> LayoutCharacters::modeOf(const XConnection& connection,
                                                               Deadline deadline) {
    const auto state = connection.reply<xcb_xkb_get_state_reply_t>(
        xcb_xkb_get_state(connection.get(), XCB_XKB_ID_USE_CORE_KBD), deadline);
    return state ? std::optional(Mode{state->group, state->lockedMods}) : std::nullopt;
}

std::vector<LayoutCharacters> LayoutCharacters::read(const XConnection& connection, Deadline deadline) {
    const auto mode = modeOf(connection, deadline);
    const ContextPtr context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    if (!mode || !context)
        return {};
    const KeymapPtr keymap(xkb_x11_keymap_new_from_device(context.get(), connection.get(),
                                                          syntheticKeyboard(connection, deadline),
                                                          XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap)
        return {};
    std::vector<LayoutCharacters> layouts{LayoutCharacters(*keymap, *mode)};
    for (xkb_layout_index_t group = 0; group < xkb_keymap_num_layouts(keymap.get()); ++group)
        if (group != mode->group)
            layouts.push_back(LayoutCharacters(*keymap, {group, mode->lockedModifiers}));
    return layouts;
}

LayoutCharacters::LayoutCharacters(xkb_keymap& keymap, Mode mode) : mode_(mode) {
    for (const auto& modifiers : waysOf(keymap))
        addKeys(keymap, modifiers);
}

void LayoutCharacters::addKeys(xkb_keymap& keymap, const std::vector<xcb_keycode_t>& modifiers) {
    const StatePtr state(xkb_state_new(&keymap));
    xkb_state_update_mask(state.get(), 0, 0, mode_.lockedModifiers, 0, 0, mode_.group);
    for (const auto modifier : modifiers)
        xkb_state_update_key(state.get(), modifier, XKB_KEY_DOWN);
    for (auto key = xkb_keymap_min_keycode(&keymap); key <= std::min(xkb_keymap_max_keycode(&keymap), 255U);
         ++key)
        if (const auto character = characterOf(xkb_state_key_get_one_sym(state.get(), key)))
            strokes_.emplace(character, Stroke{static_cast<xcb_keycode_t>(key), modifiers});
}

const Stroke* LayoutCharacters::strokeFor(char32_t character) const {
    const auto entry = strokes_.find(character);
    return entry != strokes_.end() ? &entry->second : nullptr;
}

} // namespace velorin

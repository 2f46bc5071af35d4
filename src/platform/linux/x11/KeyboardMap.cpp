#include "platform/linux/x11/KeyboardMap.h"

#include <algorithm>
#include <xcb/xinput.h>

namespace velorin {

namespace {

KeySet keySetOf(const std::uint8_t* bytes) {
    KeySet keys;
    for (std::size_t key = 0; key < keys.size(); ++key)
        keys[key] = (bytes[key / 8] >> (key % 8) & 1) != 0;
    return keys;
}

constexpr std::uint32_t lockBit = XCB_MOD_MASK_LOCK;

bool isLock(xcb_keysym_t symbol) {
    return symbol == KeySymbol::capsLock || symbol == KeySymbol::numLock || symbol == KeySymbol::scrollLock;
}

} // namespace

std::optional<KeyboardMap> KeyboardMap::read(const XConnection& connection, Deadline deadline) {
    KeyboardMap map;
    auto* c = connection.get();
    const auto first = connection.setup().min_keycode;
    const auto count = static_cast<std::uint8_t>(connection.setup().max_keycode - first + 1);
    const auto keysCookie = xcb_get_keyboard_mapping(c, first, count);
    const auto modifiersCookie = xcb_get_modifier_mapping(c);
    const auto keys = connection.reply<xcb_get_keyboard_mapping_reply_t>(keysCookie, deadline);
    const auto modifiers = connection.reply<xcb_get_modifier_mapping_reply_t>(modifiersCookie, deadline);
    if (!keys || !modifiers)
        return std::nullopt;
    map.first_ = first;
    map.columns_ = keys->keysyms_per_keycode;
    const auto* symbols = xcb_get_keyboard_mapping_keysyms(keys.get());
    map.symbols_.assign(symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(keys.get()));
    const auto* codes = xcb_get_modifier_mapping_keycodes(modifiers.get());
    for (unsigned i = 0; i < 8U * modifiers->keycodes_per_modifier; ++i) {
        const auto key = codes[i];
        if (key == 0)
            continue;
        map.modifiersOf_[key] |= static_cast<std::uint8_t>(1U << (i / modifiers->keycodes_per_modifier));
        if (!isLock(map.symbol(key, 0)))
            map.modifierKeys_.set(key);
        else if (std::ranges::find(map.locks_, map.modifiersOf_[key]) == map.locks_.end())
            map.locks_.push_back(map.modifiersOf_[key]);
    }
    if (std::ranges::find(map.locks_, lockBit) == map.locks_.end()) // the server has it, keys or not
        map.locks_.push_back(lockBit);
    return map;
}

xcb_keysym_t KeyboardMap::symbol(xcb_keycode_t key, std::size_t column) const {
    const auto index = static_cast<std::size_t>(key - first_) * columns_ + column;
    return key >= first_ && column < columns_ && index < symbols_.size() ? symbols_[index] : 0;
}

std::vector<xcb_keycode_t> KeyboardMap::freeKeys() const {
    std::vector<xcb_keycode_t> keys;
    for (unsigned key = first_; key < 256; ++key) {
        const auto code = static_cast<xcb_keycode_t>(key);
        bool isFree = modifiersOf_[code] == 0;
        for (std::size_t column = 0; column < columns_ && isFree; ++column)
            isFree = symbol(code, column) == 0;
        if (isFree)
            keys.push_back(code);
    }
    return keys;
}

std::optional<xcb_keycode_t> KeyboardMap::neutralKey(unsigned last) const {
    auto keys = freeKeys();
    std::erase_if(keys, [last](xcb_keycode_t key) { return key > last; });
    return keys.empty() ? std::nullopt : std::optional(keys.back());
}

std::optional<xcb_keycode_t> KeyboardMap::keyFor(xcb_keysym_t wanted) const {
    for (const std::size_t column : {std::size_t{0}, std::size_t{2}}) // the second layout begins at 2
        for (unsigned key = first_; key < 256; ++key)
            if (symbol(static_cast<xcb_keycode_t>(key), column) == wanted)
                return static_cast<xcb_keycode_t>(key);
    return std::nullopt;
}

xcb_keycode_t KeyboardMap::keyFor(xcb_keysym_t wanted, xcb_keycode_t otherwise) const {
    return keyFor(wanted).value_or(otherwise);
}

std::optional<KeySet> keysDown(const XConnection& connection, Deadline deadline) {
    const auto answer =
        connection.reply<xcb_query_keymap_reply_t>(xcb_query_keymap(connection.get()), deadline);
    return answer ? std::optional(keySetOf(answer->keys)) : std::nullopt;
}

std::optional<KeySet> keysHeldByUser(const XConnection& connection, Deadline deadline) {
    auto* c = connection.get();
    const auto devices =
        connection.reply<xcb_input_list_input_devices_reply_t>(xcb_input_list_input_devices(c), deadline);
    if (!devices)
        return std::nullopt;
    KeySet held;
    const auto* infos = xcb_input_list_input_devices_devices(devices.get());
    auto names = xcb_input_list_input_devices_names_iterator(devices.get());
    for (int i = 0; i < devices->devices_len; ++i, xcb_str_next(&names)) {
        const std::string_view name(xcb_str_name(names.data),
                                    static_cast<std::size_t>(xcb_str_name_length(names.data)));
        if (infos[i].device_use != XCB_INPUT_DEVICE_USE_IS_X_EXTENSION_KEYBOARD ||
            name.find("XTEST") != std::string_view::npos)
            continue;
        const auto state = connection.reply<xcb_input_query_device_state_reply_t>(
            xcb_input_query_device_state(c, infos[i].device_id), deadline);
        if (!state && deadline.hasPassed())
            return std::nullopt;
        if (!state)
            continue; // unplugged meanwhile
        for (auto classes = xcb_input_query_device_state_classes_iterator(state.get()); classes.rem > 0;
             xcb_input_input_state_next(&classes)) {
            if (classes.data->class_id != XCB_INPUT_INPUT_CLASS_KEY)
                continue;
            const auto* key = reinterpret_cast<const xcb_input_key_state_t*>(classes.data);
            held |= keySetOf(key->keys);
        }
    }
    return held;
}

} // namespace velorin

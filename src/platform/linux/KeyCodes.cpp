#include "platform/linux/KeyCodes.h"

#include <algorithm>
#include <array>
#include <linux/input-event-codes.h>

namespace velorin::KeyCodes {

namespace {

struct Pair {
    std::uint16_t evdev;
    std::uint16_t keyCode;
};

// clang-format off
constexpr Pair pairs[] = {
    // Letters
    {KEY_A, 0}, {KEY_S, 1}, {KEY_D, 2}, {KEY_F, 3}, {KEY_H, 4}, {KEY_G, 5}, {KEY_Z, 6}, {KEY_X, 7},
    {KEY_C, 8}, {KEY_V, 9}, {KEY_B, 11}, {KEY_Q, 12}, {KEY_W, 13}, {KEY_E, 14}, {KEY_R, 15}, {KEY_Y, 16},
    {KEY_T, 17}, {KEY_O, 31}, {KEY_U, 32}, {KEY_I, 34}, {KEY_P, 35}, {KEY_L, 37}, {KEY_J, 38}, {KEY_K, 40},
    {KEY_N, 45}, {KEY_M, 46},
    // Digits and punctuation
    {KEY_1, 18}, {KEY_2, 19}, {KEY_3, 20}, {KEY_4, 21}, {KEY_6, 22}, {KEY_5, 23}, {KEY_EQUAL, 24},
    {KEY_9, 25}, {KEY_7, 26}, {KEY_MINUS, 27}, {KEY_8, 28}, {KEY_0, 29}, {KEY_RIGHTBRACE, 30},
    {KEY_LEFTBRACE, 33}, {KEY_APOSTROPHE, 39}, {KEY_SEMICOLON, 41}, {KEY_BACKSLASH, 42}, {KEY_COMMA, 43},
    {KEY_SLASH, 44}, {KEY_DOT, 47}, {KEY_GRAVE, 50}, {KEY_102ND, 10},
    // White space and editing
    {KEY_ENTER, 36}, {KEY_TAB, 48}, {KEY_SPACE, 49}, {KEY_BACKSPACE, 51}, {KEY_ESC, 53}, {KEY_DELETE, 117},
    {KEY_INSERT, 114}, {KEY_HOME, 115}, {KEY_END, 119}, {KEY_PAGEUP, 116}, {KEY_PAGEDOWN, 121},
    {KEY_LEFT, 123}, {KEY_RIGHT, 124}, {KEY_DOWN, 125}, {KEY_UP, 126},
    // Modifiers
    {KEY_RIGHTMETA, 54}, {KEY_LEFTMETA, 55}, {KEY_LEFTSHIFT, 56}, {KEY_CAPSLOCK, 57}, {KEY_LEFTALT, 58},
    {KEY_LEFTCTRL, 59}, {KEY_RIGHTSHIFT, 60}, {KEY_RIGHTALT, 61}, {KEY_RIGHTCTRL, 62},
    // Function keys
    {KEY_F1, 122}, {KEY_F2, 120}, {KEY_F3, 99}, {KEY_F4, 118}, {KEY_F5, 96}, {KEY_F6, 97}, {KEY_F7, 98},
    {KEY_F8, 100}, {KEY_F9, 101}, {KEY_F10, 109}, {KEY_F11, 103}, {KEY_F12, 111}, {KEY_F13, 105},
    {KEY_F14, 107}, {KEY_F15, 113}, {KEY_F16, 106}, {KEY_F17, 64}, {KEY_F18, 79}, {KEY_F19, 80}, {KEY_F20, 90},
    // Keypad
    {KEY_KPDOT, 65}, {KEY_KPASTERISK, 67}, {KEY_KPPLUS, 69}, {KEY_NUMLOCK, 71}, {KEY_KPSLASH, 75},
    {KEY_KPENTER, 76}, {KEY_KPMINUS, 78}, {KEY_KPEQUAL, 81}, {KEY_KP0, 82}, {KEY_KP1, 83}, {KEY_KP2, 84},
    {KEY_KP3, 85}, {KEY_KP4, 86}, {KEY_KP5, 87}, {KEY_KP6, 88}, {KEY_KP7, 89}, {KEY_KP8, 91}, {KEY_KP9, 92},
    // Of Asian keyboards, and media
    {KEY_YEN, 93}, {KEY_RO, 94}, {KEY_KPJPCOMMA, 95}, {KEY_MUHENKAN, 102}, {KEY_HENKAN, 104},
    {KEY_COMPOSE, 110}, {KEY_VOLUMEUP, 72}, {KEY_VOLUMEDOWN, 73}, {KEY_MUTE, 74},
    // Keys that only PC keyboards have: numbers that the other numbering leaves free
    {KEY_SYSRQ, 128}, {KEY_SCROLLLOCK, 129}, {KEY_PAUSE, 130}, {KEY_PLAYPAUSE, 131}, {KEY_NEXTSONG, 132},
    {KEY_PREVIOUSSONG, 133}, {KEY_STOPCD, 134}, {KEY_F21, 135}, {KEY_F22, 136}, {KEY_F23, 137},
    {KEY_F24, 138}, {KEY_HOMEPAGE, 139}, {KEY_MAIL, 140}, {KEY_CALC, 141}, {KEY_SEARCH, 142},
    {KEY_MICMUTE, 143}, {KEY_PROG1, 144}, {KEY_PROG2, 145}, {KEY_BACK, 146}, {KEY_FORWARD, 147},
    {KEY_REFRESH, 148},
};
// clang-format on

struct StandIn {
    std::string_view name;
    std::uint16_t evdev;
};

constexpr StandIn standIns[] = {
    // What few keyboards send reaches X only as far as its codes go, which is 255: the kernel's own KEY_FN
    // lies beyond, this one does not.
    {"fn", 151 - 8},
    {"menu", KEY_COMPOSE},
    {"rightControl", KEY_RIGHTCTRL},
    {"rightAlt", KEY_RIGHTALT},
    {"capsLock", KEY_CAPSLOCK},
    {"scrollLock", KEY_SCROLLLOCK},
    {"pause", KEY_PAUSE},
};

} // namespace

std::optional<std::uint16_t> fromEvdev(std::uint16_t evdevCode) {
    const auto* found = std::ranges::find(pairs, evdevCode, &Pair::evdev);
    return found == std::end(pairs) ? std::nullopt : std::optional(found->keyCode);
}

std::optional<std::uint16_t> toEvdev(std::uint16_t keyCode) {
    const auto* found = std::ranges::find(pairs, keyCode, &Pair::keyCode);
    return found == std::end(pairs) ? std::nullopt : std::optional(found->evdev);
}

std::uint64_t flagOf(std::uint16_t keyCode) {
    switch (keyCode) {
    case 54:
    case 55:
        return 0x100000;
    case 56:
    case 60:
        return 0x20000;
    case 58:
    case 61:
        return 0x80000;
    case 59:
    case 62:
        return 0x40000;
    case function:
        return 0x800000;
    default:
        return 0;
    }
}

std::uint16_t standInForFunction(std::string_view name) {
    const auto* found = std::ranges::find(standIns, name, &StandIn::name);
    return found == std::end(standIns) ? std::uint16_t{KEY_RIGHTCTRL} : found->evdev;
}

} // namespace velorin::KeyCodes

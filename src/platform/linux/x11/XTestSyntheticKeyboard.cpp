#include "platform/linux/x11/XTestSyntheticKeyboard.h"

#include "platform/linux/x11/PasteKeys.h"
#include "platform/linux/x11/TypingLimits.h"
#include "platform/linux/x11/Typist.h"

#include <algorithm>
#include <linux/input-event-codes.h>
#include <xcb/xtest.h>

namespace velorin {

namespace {

/// X key codes are those of the kernel and 8.
constexpr xcb_keycode_t keyAt(int evdevCode) { return static_cast<xcb_keycode_t>(evdevCode + 8); }

/// The keys of a chord, in the order in which they go down. A symbol that the layout lacks, like the v on
/// a Greek keyboard, is at its usual place, where applications look for it then.
std::vector<xcb_keycode_t> keysOf(Chord chord, const PasteKeys& keys, const KeyboardMap& map) {
    const auto control = map.keyFor(KeySymbol::leftControl, keyAt(KEY_LEFTCTRL));
    const auto shift = map.keyFor(KeySymbol::leftShift, keyAt(KEY_LEFTSHIFT));
    const auto insert = map.keyFor(KeySymbol::insert, keyAt(KEY_INSERT));
    const auto v = map.keyFor(KeySymbol::v, keyAt(KEY_V));
    if (chord == Chord::copy)
        return keys.canCopy ? std::vector{control, insert} : std::vector<xcb_keycode_t>{};
    switch (keys.paste) {
    case PasteKeys::Paste::controlV:
        return {control, v};
    case PasteKeys::Paste::controlShiftV:
        return {control, shift, v};
    case PasteKeys::Paste::controlShiftInsert:
        return {control, shift, insert};
    case PasteKeys::Paste::shiftInsert:
        return {shift, insert};
    }
    return {};
}

} // namespace

XTestSyntheticKeyboard::XTestSyntheticKeyboard(SharedKeyState& state) : state_(state) {}

XTestSyntheticKeyboard::~XTestSyntheticKeyboard() = default;

PasteboardSelection
XTestSyntheticKeyboard::pasteSource(const std::optional<RunningApplication>& application) const {
    return pasteKeysOf(application).source;
}

bool XTestSyntheticKeyboard::chord(Chord chord, const std::optional<RunningApplication>& application) {
    const std::scoped_lock lock(mutex_);
    const Deadline deadline(serverDeadline);
    if (!ensureConnection())
        return false;
    connection_->dropEvents();
    const auto map = KeyboardMap::read(*connection_, deadline);
    if (!map)
        return false;
    const auto keys = keysOf(chord, pasteKeysOf(application), *map);
    return !keys.empty() && post(keys, *map, deadline);
}

bool XTestSyntheticKeyboard::ensureConnection() {
    if (connection_ && !connection_->isBroken())
        return true;
    typist_.reset();
    connection_ = XConnection::open();
    if (connection_ && !connection_->extension(xcb_test_id))
        connection_.reset();
    if (connection_)
        typist_ = std::make_unique<Typist>(*connection_, state_, spares_);
    return connection_ != nullptr;
}

bool XTestSyntheticKeyboard::post(const std::vector<xcb_keycode_t>& keys, const KeyboardMap& map,
                                  Deadline deadline) {
    KeyWriter writer(*connection_, state_, map);
    if (!writer.clearModifiers(deadline))
        return false;
    for (const auto key : keys)
        writer.press(key);
    for (auto key = keys.rbegin(); key != keys.rend(); ++key)
        writer.release(*key);
    return writer.finish(deadline);
}

std::optional<qsizetype> XTestSyntheticKeyboard::type(const QStringList& characters,
                                                      const std::optional<RunningApplication>& application) {
    if (application && hasLargeCodePoints(characters) && cutsTypedCharacters(*application))
        return std::nullopt;
    const std::scoped_lock lock(mutex_);
    if (!ensureConnection())
        return std::nullopt;
    spares_.wereUsed(application); // what is lent already is not given back under our hands
    const auto posted = typist_->type(characters);
    spares_.wereUsed(application);
    return posted;
}

} // namespace velorin

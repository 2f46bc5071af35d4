#include "platform/linux/x11/Typist.h"

#include "platform/linux/x11/XkbRequests.h"

#include <algorithm>
#include <thread>
#include <xkbcommon/xkbcommon-x11.h>

namespace velorin {

namespace {

/// The whole map is asked for twice when keys are lent.
constexpr auto planning = 2 * serverDeadline;

/// Both ways of ending a line are one key.
std::vector<std::u32string> codePointsOf(const QStringList& characters) {
    std::vector<std::u32string> result;
    for (const auto& character : characters) {
        auto codePoints = character.toStdU32String();
        if (codePoints == U"\r\n" || codePoints == U"\r")
            codePoints.assign(1, U'\n');
        result.push_back(std::move(codePoints));
    }
    return result;
}

/// A tab goes to the next field of a form, where the rest of the text would land, and completes in a shell.
bool isTypable(const std::vector<std::u32string>& characters) {
    return std::ranges::none_of(characters, [](const std::u32string& character) {
        return std::ranges::any_of(
            character, [](char32_t c) { return (c < 0x20 && c != U'\n') || (c >= 0x7f && c < 0xa0); });
    });
}

std::chrono::milliseconds timeFor(const std::vector<std::u32string>& characters) {
    std::size_t keys = 0;
    for (const auto& character : characters)
        keys += character.size();
    return keys * Typist::pace;
}

std::vector<char32_t> missingIn(const LayoutCharacters& layout, std::span<const std::u32string> characters) {
    std::vector<char32_t> missing;
    for (const auto& character : characters)
        for (const auto c : character)
            if (!layout.strokeFor(c) && std::ranges::find(missing, c) == missing.end())
                missing.push_back(c);
    return missing;
}

/// While it lives, the server serves this connection alone.
class ServerGrab final {
public:
    explicit ServerGrab(const XConnection& connection) : connection_(connection) {
        xcb_grab_server(connection_.get());
    }
    ~ServerGrab() {
        xcb_ungrab_server(connection_.get());
        connection_.flush();
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

private:
    const XConnection& connection_;
};

} // namespace

Typist::Typist(XConnection& connection, SharedKeyState& state, SpareKeys& spares)
    : connection_(connection), state_(state), spares_(spares),
      hasKeyboardExtension_(xkb_x11_setup_xkb_extension(connection.get(), XKB_X11_MIN_MAJOR_XKB_VERSION,
                                                        XKB_X11_MIN_MINOR_XKB_VERSION,
                                                        XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr,
                                                        nullptr, nullptr, nullptr) != 0) {
    constexpr std::uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t parts =
        XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    if (hasKeyboardExtension_)
        xcb_xkb_select_events(connection.get(), XCB_XKB_ID_USE_CORE_KBD, events, 0, events, parts, parts,
                              nullptr);
}

std::optional<qsizetype> Typist::type(const QStringList& texts) {
    const auto characters = codePointsOf(texts);
    if (!hasKeyboardExtension_ || !isTypable(characters) || timeFor(characters) > longestTyping)
        return std::nullopt;
    if (const ServerGrab grab(connection_); !makeTypable(characters, Deadline(planning)))
        return std::nullopt;
    KeyWriter keys(connection_, state_, *map_);
    const Deadline end(longestTyping + patience);
    qsizetype posted = 0;
    auto next = Deadline::Clock::now();
    for (std::span<const std::u32string> rest(characters); !rest.empty();) {
        const auto some = rest.first(std::min<std::size_t>(rest.size(), handful));
        std::this_thread::sleep_until(next);
        bool isPosted = postHandful(keys, some, rest);
        while (!isPosted && posted > 0 && !end.hasPassed() && !connection_.isBroken())
            isPosted = postHandful(keys, some, rest);
        if (!isPosted)
            break;
        for (const auto& character : some)
            next += character.size() * pace;
        posted += static_cast<qsizetype>(some.size());
        rest = rest.subspan(some.size());
    }
    (void)keys.finish(Deadline(serverDeadline));
    return posted;
}

bool Typist::refreshLayout(std::span<const std::u32string> characters, Deadline deadline) {
    isStale_ = true;
    // First everything that is known of changes, so that what comes later counts as one.
    if (!connection_.sync(deadline))
        return false;
    (void)mapHasChanged();
    auto map = KeyboardMap::read(connection_, deadline);
    std::optional<LayoutCharacters> best;
    for (auto& layout : LayoutCharacters::read(connection_, deadline))
        if (!best || missingIn(layout, characters).size() < missingIn(*best, characters).size())
            best = std::move(layout);
    if (!map || !best)
        return false;
    map_ = std::move(map);
    layout_ = std::move(best);
    isStale_ = false;
    return true;
}

bool Typist::mapHasChanged() {
    bool hasChanged = false;
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())})
        hasChanged = true; // nothing else is reported on this connection
    return hasChanged;
}

bool Typist::makeTypable(std::span<const std::u32string> characters, Deadline deadline) {
    if (!refreshLayout(characters, deadline))
        return false;
    const auto missing = missingIn(*layout_, characters);
    if (missing.empty())
        return true;
    const bool hasLocks = layout_->mode().lockedModifiers != 0;
    return spares_.lend(connection_, *map_, missing, hasLocks) && refreshLayout(characters, deadline) &&
           missingIn(*layout_, characters).empty();
}

bool Typist::postHandful(KeyWriter& keys, std::span<const std::u32string> characters,
                         std::span<const std::u32string> rest) {
    const Deadline deadline(serverDeadline);
    const ServerGrab grab(connection_);
    const auto mode = LayoutCharacters::modeOf(connection_, deadline);
    if (!mode || !keys.clearModifiers(deadline))
        return false;
    if (mapHasChanged() || mode->lockedModifiers != layout_->mode().lockedModifiers)
        isStale_ = true;
    if (isStale_ && !makeTypable(rest, deadline)) {
        isStale_ = true; // whoever tries again has to look again
        return false;
    }
    // A layout that the user has switched to meanwhile may lack the letters: it has to wait for this moment.
    const bool isSwitched = mode->group != layout_->mode().group;
    if (isSwitched)
        lockGroup(layout_->mode().group);
    post(keys, characters);
    if (isSwitched)
        lockGroup(mode->group);
    return !connection_.isBroken();
}

void Typist::lockGroup(std::uint32_t group) {
    xcb_xkb_latch_lock_state(connection_.get(), XCB_XKB_ID_USE_CORE_KBD, 0, 0, true,
                             static_cast<std::uint8_t>(group), 0, false, 0);
}

void Typist::post(KeyWriter& keys, std::span<const std::u32string> characters) {
    std::vector<xcb_keycode_t> down;
    const auto hold = [&](const std::vector<xcb_keycode_t>& modifiers) {
        if (down == modifiers)
            return;
        for (auto key = down.rbegin(); key != down.rend(); ++key)
            keys.release(*key);
        for (const auto key : modifiers)
            keys.press(key);
        down = modifiers;
    };
    for (const auto& character : characters) {
        for (const auto c : character) {
            const auto& stroke = *layout_->strokeFor(c);
            hold(stroke.modifiers);
            keys.press(stroke.key);
            keys.release(stroke.key);
        }
    }
    hold({});
}

} // namespace velorin

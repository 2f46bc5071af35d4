#include "platform/linux/x11/TapConnections.h"

#include "platform/linux/x11/InputSelection.h"
#include "platform/linux/x11/XkbRequests.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <poll.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

namespace velorin {

namespace {

/// What tells that other windows are in front, or that some have gone.
constexpr std::array<std::string_view, 2> namesOfOthersProperties{"_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST"};

using Extension = const xcb_query_extension_reply_t*;

tl::expected<Extension, TapRefusal> extensionOf(const XConnection& connection, xcb_extension_t& id,
                                                std::chrono::milliseconds patience) {
    xcb_prefetch_extension_data(connection.get(), &id);
    if (!connection.sync(Deadline(patience)))
        return tl::unexpected(TapRefusal::late);
    const auto* data = xcb_get_extension_data(connection.get(), &id);
    return data && data->present ? tl::expected<Extension, TapRefusal>(data)
                                 : tl::unexpected(TapRefusal::unfit);
}

/// The input extension, in version 2.2 or above.
tl::expected<Extension, TapRefusal> input22Of(const XConnection& connection,
                                              std::chrono::milliseconds patience) {
    const auto input = extensionOf(connection, xcb_input_id, patience);
    if (!input)
        return input;
    const auto version = connection.reply<xcb_input_xi_query_version_reply_t>(
        xcb_input_xi_query_version(connection.get(), 2, 2), Deadline(patience));
    if (!version)
        return tl::unexpected(TapRefusal::late);
    const bool isEnough =
        version->major_version > 2 || (version->major_version == 2 && version->minor_version >= 2);
    return isEnough ? input : tl::unexpected(TapRefusal::unfit);
}

} // namespace

bool hasInput22(const XConnection& connection) { return input22Of(connection, serverDeadline).has_value(); }

tl::expected<std::unique_ptr<TapConnections>, TapRefusal>
TapConnections::open(std::chrono::milliseconds patience) {
    auto grabs = XConnection::open();
    auto raw = XConnection::open();
    if (!grabs || !raw)
        return tl::unexpected(TapRefusal::noServer);
    std::unique_ptr<TapConnections> made(new TapConnections(std::move(grabs), std::move(raw))); // private
    if (const auto refusal = made->setUp(patience))
        return tl::unexpected(*refusal);
    return made;
}

std::optional<TapRefusal> TapConnections::setUp(std::chrono::milliseconds patience) {
    const auto input = input22Of(*grabs_, patience);
    if (!input)
        return input.error();
    if (const auto heard = input22Of(*raw_, patience); !heard)
        return heard.error();
    if (const auto test = extensionOf(*grabs_, xcb_test_id, patience); !test)
        return test.error();
    opcode_ = (*input)->major_opcode;
    firstInputEvent_ = (*input)->first_event;
    // Only on the one that sets locks: a connection that speaks this extension is told of changes of the map
    // in other ways than the one by which we are told.
    if (extensionOf(*grabs_, xcb_xkb_id, patience))
        (void)grabs_->reply<xcb_xkb_use_extension_reply_t>(xcb_xkb_use_extension(grabs_->get(), 1, 0),
                                                           Deadline(patience));
    selectInput(*raw_, XCB_INPUT_DEVICE_ALL,
                XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE |
                    XCB_INPUT_XI_EVENT_MASK_HIERARCHY);
    if (!readDevices(patience) || !raw_->sync(Deadline(patience)))
        return TapRefusal::late;
    return std::nullopt;
}

bool TapConnections::readDevices(std::chrono::milliseconds patience) {
    const auto devices = raw_->reply<xcb_input_xi_query_device_reply_t>(
        xcb_input_xi_query_device(raw_->get(), XCB_INPUT_DEVICE_ALL), Deadline(patience));
    areDevicesOld_ = !devices;
    if (!devices)
        return false;
    std::set<std::uint16_t> present;
    syntheticDevices_.clear();
    masterKeyboards_.clear();
    masterKeyboard_ = 0;
    for (auto infos = xcb_input_xi_query_device_infos_iterator(devices.get()); infos.rem > 0;
         xcb_input_xi_device_info_next(&infos)) {
        const auto& info = *infos.data;
        present.insert(info.deviceid);
        const std::string_view name(xcb_input_xi_device_info_name(&info),
                                    static_cast<std::size_t>(xcb_input_xi_device_info_name_length(&info)));
        if (info.type == XCB_INPUT_DEVICE_TYPE_MASTER_KEYBOARD) {
            masterKeyboards_.insert(info.deviceid);
            masterKeyboard_ = masterKeyboard_ == 0 ? info.deviceid : masterKeyboard_;
        }
        if (name.ends_with("XTEST keyboard"))
            syntheticDevices_.insert(info.deviceid);
    }
    for (auto& releases : ownReleases_)
        releases.keepOnly(present); // what has gone tells nothing more, and its number goes to another
    return masterKeyboard_ != 0;
}

void TapConnections::readGrabbed(std::deque<TapKey>& grabbedKeys) {
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(grabs_->get())})
        if (const auto key = keyIn(*event))
            grabbedKeys.push_back(*key);
}

std::optional<TapKey> TapConnections::nextGrabbed(std::deque<TapKey>& grabbedKeys) {
    const Deadline deadline(serverDeadline);
    for (;;) {
        readGrabbed(grabbedKeys);
        if (!grabbedKeys.empty()) {
            const auto key = grabbedKeys.front();
            grabbedKeys.pop_front();
            return key;
        }
        if (grabs_->isBroken() || deadline.hasPassed())
            return std::nullopt;
        grabs_->flush();
        pollfd waiting{grabs_->fileDescriptor(), POLLIN, 0};
        poll(&waiting, 1, deadline.pollTimeout());
    }
}

bool TapConnections::read(std::deque<TapKey>& grabbedKeys, std::deque<TapKey>& rawKeys) {
    bool isChanged = false;
    // What is heard first: a grabbed key that is there already has then been heard as well.
    readGrabbed(grabbedKeys);
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(raw_->get())}) {
        const int type = event->response_type & 0x7f;
        if (const auto key = keyIn(*event)) {
            hear(*key, rawKeys);
        } else if (type == XCB_MAPPING_NOTIFY) {
            isChanged = true;
        } else if (type == XCB_GE_GENERIC &&
                   reinterpret_cast<const xcb_ge_generic_event_t&>(*event).event_type ==
                       XCB_INPUT_HIERARCHY) {
            isChanged = true;
            (void)readDevices(serverDeadline);
        } else if (isWatchingOthers_ && tellsOfOthers(*event)) {
            haveOthersChanged_ = true;
        }
    }
    return isChanged;
}

void TapConnections::watchOthers(bool isWatching) {
    if (std::exchange(isWatchingOthers_, isWatching) == isWatching)
        return;
    propertiesOfOthers_.clear();
    for (const auto name : namesOfOthersProperties)
        propertiesOfOthers_.push_back(raw_->atom(name));
    const std::uint32_t events =
        isWatching ? XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : 0;
    xcb_change_window_attributes(raw_->get(), raw_->root(), XCB_CW_EVENT_MASK, &events);
    raw_->flush();
}

bool TapConnections::tellsOfOthers(const xcb_generic_event_t& event) const {
    const int type = event.response_type & 0x7f;
    if (type != XCB_PROPERTY_NOTIFY)
        return type == XCB_DESTROY_NOTIFY; // a program without a window of any kind goes unnoticed
    const auto atom = reinterpret_cast<const xcb_property_notify_event_t&>(event).atom;
    return std::ranges::find(propertiesOfOthers_, atom) != propertiesOfOthers_.end();
}

std::optional<TapKey> TapConnections::keyIn(const xcb_generic_event_t& event) const {
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if ((event.response_type & 0x7f) != XCB_GE_GENERIC || generic.extension != opcode_)
        return std::nullopt;
    switch (generic.event_type) {
    case XCB_INPUT_RAW_KEY_PRESS:
    case XCB_INPUT_RAW_KEY_RELEASE: {
        const auto& raw = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
        if ((raw.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0)
            return std::nullopt;
        return TapKey{generic.event_type == XCB_INPUT_RAW_KEY_PRESS, static_cast<xcb_keycode_t>(raw.detail),
                      raw.deviceid, raw.sourceid, raw.time};
    }
    case XCB_INPUT_KEY_PRESS:
    case XCB_INPUT_KEY_RELEASE: {
        const auto& key = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
        return TapKey{generic.event_type == XCB_INPUT_KEY_PRESS,
                      static_cast<xcb_keycode_t>(key.detail),
                      key.deviceid,
                      key.sourceid,
                      key.time,
                      key.mods.effective,
                      key.mods.locked};
    }
    default:
        return std::nullopt;
    }
}

void TapConnections::replay() const {
    xcb_input_xi_allow_events(grabs_->get(), XCB_CURRENT_TIME, masterKeyboard_,
                              XCB_INPUT_EVENT_MODE_REPLAY_DEVICE, 0, grabs_->root());
}

void TapConnections::step(std::size_t keys) const {
    for (std::size_t i = 0; i < keys; ++i)
        xcb_input_xi_allow_events(grabs_->get(), XCB_CURRENT_TIME, masterKeyboard_,
                                  XCB_INPUT_EVENT_MODE_SYNC_DEVICE, 0, grabs_->root());
}

void TapConnections::post(bool isPress, xcb_keycode_t key) const {
    xcb_test_fake_input(grabs_->get(), isPress ? XCB_KEY_PRESS : XCB_KEY_RELEASE, key, XCB_CURRENT_TIME,
                        XCB_WINDOW_NONE, 0, 0, 0);
}

void TapConnections::postRelease(const TapKey& press, xcb_keycode_t marker) {
    if (syntheticDevices_.contains(press.source)) {
        post(false, press.key);
        return;
    }
    for (auto& releases : ownReleases_)
        releases.add(press.source, marker, press.key);
    for (const auto key : {marker, press.key})
        xcb_test_fake_input(grabs_->get(),
                            static_cast<std::uint8_t>(firstInputEvent_ + XCB_INPUT_DEVICE_KEY_RELEASE), key,
                            XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, static_cast<std::uint8_t>(press.source));
}

bool TapConnections::OwnReleases::take(const TapKey& heard) {
    const auto found = std::ranges::find_if(releases_, [&](const Release& release) {
        return release.device == heard.source && heard.key == (release.isNext ? release.key : release.marker);
    });
    if (heard.isPress || found == releases_.end())
        return false;
    if (found->isNext)
        releases_.erase(found);
    else
        found->isNext = true;
    return true;
}

void TapConnections::OwnReleases::keepOnly(const std::set<std::uint16_t>& devices) {
    std::erase_if(releases_, [&](const Release& release) { return !devices.contains(release.device); });
}

void TapConnections::hear(TapKey key, std::deque<TapKey>& rawKeys) {
    const bool isAtOnce = !masterKeyboards_.contains(key.device);
    key.isOurs = ownReleases_[isAtOnce ? 1 : 0].take(key);
    (isAtOnce ? heardAtOnce_ : rawKeys).push_back(key);
    auto& toCome = toCome_[key.isPress ? 1 : 0][key.key];
    toCome = std::max(toCome + (isAtOnce ? 1 : -1), 0);
    if (isAtOnce && !isSynthetic(key))
        userDownByNow_[key.key] = key.isPress;
}

std::size_t TapConnections::waiting() const {
    std::size_t keys = 0;
    for (const auto& ofKind : toCome_)
        keys += static_cast<std::size_t>(std::accumulate(ofKind.begin(), ofKind.end(), 0));
    return keys;
}

void TapConnections::hold() const {
    const std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
    const auto cookie = xcb_input_xi_grab_device(
        grabs_->get(), grabs_->root(), XCB_CURRENT_TIME, XCB_CURSOR_NONE, masterKeyboard_,
        XCB_INPUT_GRAB_MODE_22_SYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, 1, &events);
    xcb_discard_reply(grabs_->get(), cookie.sequence); // the key that waits would be kept waiting for it
}

void TapConnections::letGo() const {
    xcb_input_xi_ungrab_device(grabs_->get(), XCB_CURRENT_TIME, masterKeyboard_);
}

void TapConnections::lock(std::uint32_t modifiers, std::uint32_t values) const {
    xcb_xkb_latch_lock_state(grabs_->get(), XCB_XKB_ID_USE_CORE_KBD, static_cast<std::uint8_t>(modifiers),
                             static_cast<std::uint8_t>(values), 0, 0, 0, 0, 0);
}

} // namespace velorin

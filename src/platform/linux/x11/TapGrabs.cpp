#include "platform/linux/x11/TapGrabs.h"

#include "platform/Log.h"

#include <algorithm>

namespace velorin {

namespace {

std::vector<std::uint32_t> without(const std::set<std::uint32_t>& some, const GrabPlan& plan,
                                   xcb_keycode_t key) {
    const auto found = plan.find(key);
    std::vector<std::uint32_t> rest;
    std::ranges::copy_if(some, std::back_inserter(rest), [&](std::uint32_t state) {
        return found == plan.end() || !found->second.contains(state);
    });
    return rest;
}

} // namespace

TapGrabs::TapGrabs(const TapConnections& connections, SharedKeyState& shared)
    : connections_(connections), shared_(shared) {}

TapGrabs::~TapGrabs() {
    plan_.clear();
    modifiers_.reset();
    publish();
}

void TapGrabs::apply(const GrabPlan& plan, const TapKeys& keys) {
    if (plan == plan_)
        return;
    for (const auto& [key, states] : plan_)
        if (const auto gone = without(states, plan, key); !gone.empty())
            ungrab(key, gone);
    std::vector<std::pair<xcb_keycode_t, xcb_input_xi_passive_grab_device_cookie_t>> asked;
    for (const auto& [key, states] : plan)
        if (const auto fresh = without(states, plan_, key); !fresh.empty())
            asked.emplace_back(key, request(key, fresh));
    plan_ = plan;
    for (const auto& [key, cookie] : asked) {
        const auto refused = connections_.grabs().reply<xcb_input_xi_passive_grab_device_reply_t>(
            cookie, Deadline(serverDeadline));
        if (!refused)
            continue;
        const auto* states = xcb_input_xi_passive_grab_device_modifiers(refused.get());
        for (int i = 0; i < xcb_input_xi_passive_grab_device_modifiers_length(refused.get()); ++i)
            qCWarning(tapLog, "grab refused: key %d (code %d) with modifiers 0x%x belongs to another program",
                      int{key}, int{keys.virtualOf(key).value_or(0)}, states[i].modifiers);
    }
    (void)connections_.grabs().sync(Deadline(serverDeadline));
    publish();
}

void TapGrabs::grabModifiers(const KeySet& modifiers) {
    for (unsigned code = 0; code < 256; ++code) {
        const auto key = static_cast<xcb_keycode_t>(code);
        if (!modifiers[key] || modifiers_[key] || isBound(key))
            continue;
        // Not waited for: the answer to a pressed key comes behind it. One that is refused stays visible to
        // the application, which is no harm.
        const auto cookie = request(key, {XCB_INPUT_MODIFIER_MASK_ANY});
        xcb_discard_reply(connections_.grabs().get(), cookie.sequence);
        modifiers_.set(key);
    }
    publish();
}

void TapGrabs::releaseModifiers() {
    for (unsigned code = 0; code < 256; ++code)
        if (modifiers_[code])
            ungrab(static_cast<xcb_keycode_t>(code), {XCB_INPUT_MODIFIER_MASK_ANY});
    modifiers_.reset();
    publish();
}

void TapGrabs::releaseModifier(xcb_keycode_t key) {
    ungrab(key, {XCB_INPUT_MODIFIER_MASK_ANY});
    modifiers_.reset(key);
    publish();
}

xcb_input_xi_passive_grab_device_cookie_t TapGrabs::request(xcb_keycode_t key,
                                                            const std::vector<std::uint32_t>& states) {
    const std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
    const auto& grabs = connections_.grabs();
    return xcb_input_xi_passive_grab_device(
        grabs.get(), XCB_CURRENT_TIME, grabs.root(), XCB_CURSOR_NONE, key, connections_.masterKeyboard(),
        static_cast<std::uint16_t>(states.size()), 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
        XCB_INPUT_GRAB_MODE_22_SYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, &events,
        states.data());
}

void TapGrabs::ungrab(xcb_keycode_t key, const std::vector<std::uint32_t>& states) {
    const auto& grabs = connections_.grabs();
    xcb_input_xi_passive_ungrab_device(grabs.get(), grabs.root(), key, connections_.masterKeyboard(),
                                       static_cast<std::uint16_t>(states.size()), XCB_INPUT_GRAB_TYPE_KEYCODE,
                                       states.data());
}

void TapGrabs::publish() const {
    for (unsigned word = 0; word < shared_->grabbed.size(); ++word) {
        std::uint32_t bits = 0;
        for (unsigned bit = 0; bit < 32; ++bit)
            if (isGrabbed(static_cast<xcb_keycode_t>(word * 32 + bit)))
                bits |= 1U << bit;
        shared_->grabbed[word] = bits;
    }
}

} // namespace velorin

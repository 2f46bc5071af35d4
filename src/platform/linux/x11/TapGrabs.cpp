#include "platform/linux/x11/TapGrabs.h"

#include "platform/Log.h"

#include <algorithm>

namespace velorin {

namespace {

bool isPlanned(const GrabPlan& plan, xcb_keycode_t key, std::uint32_t state) {
    const auto found = plan.find(key);
    return found != plan.end() && found->second.contains(state);
}

std::vector<std::uint32_t> without(const std::set<std::uint32_t>& some, const GrabPlan& plan,
                                   xcb_keycode_t key) {
    std::vector<std::uint32_t> rest;
    std::ranges::copy_if(some, std::back_inserter(rest),
                         [&](std::uint32_t state) { return !isPlanned(plan, key, state); });
    return rest;
}

} // namespace

TapGrabs::TapGrabs(const TapConnections& connections, SharedKeyState& shared, LogThread& log)
    : connections_(connections), shared_(shared), log_(log) {}

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
    const auto known = std::exchange(plan_, plan);
    for (const auto& [key, states] : std::exchange(refused_, {}))
        for (const auto state : states)
            if (isPlanned(plan_, key, state))
                refused_[key].insert(state);
    for (const auto& [key, states] : plan_) {
        codes_[key] = keys.virtualOf(key).value_or(0);
        if (auto fresh = without(states, known, key); !fresh.empty())
            ask(key, std::move(fresh));
    }
    awaitAnswers();
    publish();
}

void TapGrabs::askForRefused() {
    if (!questions_.empty())
        return; // the server is late, and asked enough
    for (const auto& [key, states] : refused_)
        ask(key, {states.begin(), states.end()});
    awaitAnswers();
}

void TapGrabs::ask(xcb_keycode_t key, std::vector<std::uint32_t> states) {
    const auto cookie = request(key, states);
    questions_.push_back({key, std::move(states), cookie});
}

void TapGrabs::awaitAnswers() {
    // The server answers in the order of the questions: behind this one all are there, if it is not late.
    (void)connections_.grabs().sync(Deadline(serverDeadline));
    takeAnswers();
}

void TapGrabs::takeAnswers() {
    while (!questions_.empty()) {
        const auto answer = connections_.grabs().replyByNow<xcb_input_xi_passive_grab_device_reply_t>(
            questions_.front().cookie);
        if (!answer)
            return;
        if (*answer)
            note(questions_.front(), **answer);
        questions_.pop_front();
    }
}

void TapGrabs::note(const Question& question, const xcb_input_xi_passive_grab_device_reply_t& answer) {
    const auto* first = xcb_input_xi_passive_grab_device_modifiers(&answer);
    const auto* end = first + xcb_input_xi_passive_grab_device_modifiers_length(&answer);
    for (const auto state : question.states) {
        const bool isRefused =
            std::any_of(first, end, [&](const auto& refused) { return refused.modifiers == state; });
        if (isPlanned(plan_, question.key, state))
            noteState(question.key, state, isRefused);
    }
}

void TapGrabs::noteState(xcb_keycode_t key, std::uint32_t state, bool isRefused) {
    const auto known = refused_.find(key);
    const bool wasRefused = known != refused_.end() && known->second.contains(state);
    if (isRefused == wasRefused)
        return;
    isNewlyRefused_ = isNewlyRefused_ || isRefused;
    if (isRefused)
        refused_[key].insert(state);
    else if (known->second.erase(state); known->second.empty())
        refused_.erase(known);
    log_.write([key, state, isRefused, code = codes_[key]] {
        if (isRefused)
            qCWarning(tapLog, "grab refused: key %d (code %d) with modifiers 0x%x belongs to another program",
                      int{key}, int{code}, state);
        else
            qCInfo(tapLog, "grab granted: key %d (code %d) with modifiers 0x%x", int{key}, int{code}, state);
    });
}

std::optional<TapTrouble> TapGrabs::trouble() const {
    if (!questions_.empty())
        return TapTrouble::serverIsLate;
    const bool isAnyTaken = std::ranges::any_of(
        refused_, [&](const auto& entry) { return entry.second == plan_.at(entry.first); });
    return isAnyTaken ? std::optional(TapTrouble::keysAreTaken) : std::nullopt;
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

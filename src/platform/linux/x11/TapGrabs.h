/// The grabs that stand in the server: those that the bindings ask for, and, while a bound key is down, those
/// of all other modifiers, which a running shortcut hides from applications.
#pragma once

#include "platform/EventTap.h"
#include "platform/LogThread.h"
#include "platform/linux/x11/GrabPlan.h"
#include "platform/linux/x11/SharedKeyState.h"
#include "platform/linux/x11/TapConnections.h"

#include <utility>
#include <xcb/xinput.h>

namespace velorin {

class TapGrabs final {
public:
    TapGrabs(const TapConnections& connections, SharedKeyState& shared, LogThread& log);
    ~TapGrabs();
    TapGrabs(const TapGrabs&) = delete;
    TapGrabs& operator=(const TapGrabs&) = delete;

    /// Changes what stands to what is wanted, and no more. What somebody else holds is logged and left, until
    /// it is asked for again.
    void apply(const GrabPlan& plan, const TapKeys& keys);
    void askForRefused();
    /// A server that is late answers some time; to be called when something has come from it.
    void takeAnswers();

    [[nodiscard]] bool isAnyRefused() const { return !refused_.empty(); }
    /// Whether something was that had not been before, since this was asked last.
    [[nodiscard]] bool isNewlyRefused() { return std::exchange(isNewlyRefused_, false); }
    /// What keeps a key from being grabbed at all.
    [[nodiscard]] std::optional<TapTrouble> trouble() const;

    /// From the next answer on, until `releaseModifiers`.
    void grabModifiers(const KeySet& modifiers);
    void releaseModifiers();
    void releaseModifier(xcb_keycode_t key);

    /// Whether a press of this key may come through a grab of ours.
    [[nodiscard]] bool isGrabbed(xcb_keycode_t key) const { return isBound(key) || modifiers_[key]; }
    [[nodiscard]] bool isBound(xcb_keycode_t key) const { return plan_.contains(key); }

private:
    struct Question {
        xcb_keycode_t key = 0;
        std::vector<std::uint32_t> states;
        xcb_input_xi_passive_grab_device_cookie_t cookie{};
    };

    [[nodiscard]] xcb_input_xi_passive_grab_device_cookie_t request(xcb_keycode_t key,
                                                                    const std::vector<std::uint32_t>& states);
    void ask(xcb_keycode_t key, std::vector<std::uint32_t> states);
    void awaitAnswers();
    void note(const Question& question, const xcb_input_xi_passive_grab_device_reply_t& answer);
    void noteState(xcb_keycode_t key, std::uint32_t state, bool isRefused);
    void ungrab(xcb_keycode_t key, const std::vector<std::uint32_t>& states);
    void publish() const;

    const TapConnections& connections_;
    SharedKeyState& shared_;
    LogThread& log_;
    GrabPlan plan_;
    std::map<xcb_keycode_t, std::uint16_t> codes_; ///< What the shortcuts call the keys of the plan.
    GrabPlan refused_;                             ///< What of it belongs to somebody else.
    bool isNewlyRefused_ = false;
    std::deque<Question> questions_; ///< Without an answer so far; the earliest first.
    KeySet modifiers_;
};

} // namespace velorin

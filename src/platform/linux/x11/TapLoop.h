/// What the tap does with each key, on the tap's own thread.
///
/// Every key is heard; only grabbed presses wait for an answer. What is heard gives the order: a grabbed
/// press is looked at when the same key (by code, keyboard and time) is heard, so that it stands rightly
/// among the modifiers and releases around it. A press counts only when it comes through a grab: the hold key
/// pressed at a locked screen, or within somebody's menu, is none of ours. Releases and the other modifiers
/// are taken from what is heard.
///
/// A press that is swallowed is answered and, in the same write, released by us on the keyboard on which it
/// was pressed. The server then holds it for up: other keys go straight through, nothing repeats, and the
/// release that the user makes later reaches nobody but us. What the user pressed between a press and its
/// answer comes to us behind it and is posted anew before anything else gets through.
#pragma once

#include "platform/EventTap.h"
#include "platform/LogThread.h"
#include "platform/linux/x11/HeldKeys.h"
#include "platform/linux/x11/Retries.h"
#include "platform/linux/x11/TapConnector.h"
#include "platform/linux/x11/TapGrabs.h"
#include "platform/linux/x11/Untangler.h"
#include "platform/linux/x11/WakeUp.h"
#include "platform/linux/x11/guard/GuardProcess.h"

#include <mutex>
#include <optional>
#include <string>

namespace velorin {

/// What the main thread wants of the tap. The mutex guards all but the wake-up.
struct TapOrders {
    std::mutex mutex;
    std::vector<TappedKey> keys;
    std::string standIn = "rightControl";
    bool isStopping = false;
    WakeUp wakeUp;

    [[nodiscard]] bool isWanted() {
        const std::scoped_lock lock(mutex);
        return !isStopping;
    }
};

class TapLoop final {
public:
    TapLoop(std::unique_ptr<TapConnections> connections, SharedKeyState& shared, TapOrders& orders,
            EventTap::Handler handler, TapListener listener, GuardProcess& guard, LogThread& log);
    ~TapLoop();
    TapLoop(const TapLoop&) = delete;
    TapLoop& operator=(const TapLoop&) = delete;

    /// From its end on no press of a tapped key is missed, unless the server is late: then the tap is
    /// suspended until it has answered.
    void prepare();

    /// After `prepare`. Until it is stopped: true. False when the server is gone for good. A connection that
    /// somebody else ended, like the guard while the process was stopped, is made anew.
    [[nodiscard]] bool run();

private:
    [[nodiscard]] bool obey();
    void setUp();
    void awaitServer();
    void regrab();
    void regrabAsNeeded();
    void tell(std::optional<TapTrouble> trouble);
    void lookAtRefusals();
    void askAgain();
    /// Modifiers with which it may come that the shortcuts count as held and the server does not.
    [[nodiscard]] KeySet unseenByNextPress() const;
    void wait();
    void lookAtGuard();
    [[nodiscard]] bool comeBack();
    void begin(std::unique_ptr<TapConnections> connections);

    void process();
    void readAll();
    void read();
    void readMap();
    void hear(const TapKey& heard);
    void hearRelease(xcb_keycode_t key);
    [[nodiscard]] bool isPressedAgain(xcb_keycode_t key);
    [[nodiscard]] bool isToCome(bool isPress, xcb_keycode_t key);
    void undoGift(xcb_keycode_t key);
    [[nodiscard]] std::optional<TapKey> takeGrabbed(const TapKey& heard);
    [[nodiscard]] std::optional<TapKey> takeGrabbedAgain(xcb_keycode_t key);
    [[nodiscard]] std::optional<TapKey> takeGrabbedIf(const std::function<bool(const TapKey&)>& isWanted);
    bool noteReposted(xcb_keycode_t key);
    void decide(const TapKey& press);
    void answer(const TapKey& press);
    /// False for a press that is grabbed only for what might have come just before it.
    [[nodiscard]] bool isWanted(const TapKey& press, std::uint16_t code) const;
    void passModifier(const TapKey& press);
    [[nodiscard]] bool isBoundKeyDown() const;
    void grabModifiersAsNeeded();
    void swallow(const TapKey& press);
    [[nodiscard]] Untangler untanglerFor(const TapKey& press);
    void grabForRepetition(const std::vector<TapKey>& keys);
    [[nodiscard]] xcb_keycode_t markerKey(xcb_keycode_t otherwise) const;
    void expectAgain(const std::vector<TapKey>& keys);
    /// What was put in again and is still held by our device, though the user has let go of it.
    [[nodiscard]] KeySet outlivedRepetitions() const;
    void undoOutlivedRepetitions();

    [[nodiscard]] TapAnswer tellPress(xcb_keycode_t key, std::uint16_t code);
    void tellRelease(xcb_keycode_t key);
    void reconcile(const KeySet& heldByUser);
    [[nodiscard]] bool isModifier(xcb_keycode_t key) const;

    std::unique_ptr<TapConnections> connections_;
    SharedKeyState& shared_;
    TapOrders& orders_;
    EventTap::Handler handler_;
    TapListener listener_;
    GuardProcess& guard_;
    LogThread& log_;
    std::unique_ptr<TapGrabs> grabs_;
    std::optional<KeyboardMap> map_; ///< Without it, as long as the server owes it, nothing is grabbed.
    bool isMapOld_ = false;          ///< It changed, and is read when no key waits.
    Retries overdue_;                ///< For the map that the server owes.
    Retries refusals_;               ///< For keys that somebody else has.
    std::optional<TapTrouble> told_ = TapTrouble::serverIsLate; ///< A tap begins suspended.
    TapKeys keys_{"rightControl"};
    std::vector<TappedKey> tappedKeys_;

    std::deque<TapKey> grabbedKeys_;
    std::deque<TapKey> heardKeys_;
    std::map<xcb_keycode_t, int> reposted_; ///< Presses of the user's that are on their way a second time.

    KeySet userDown_;          ///< On the keyboards that people press.
    HeldKeys held_;            ///< As the handler believes.
    KeySet repeated_;          ///< Pressed by us when they were put in again.
    KeySet released_;          ///< Swallowed, and released by us on the keyboard on which they were pressed.
    KeySet repeatedModifiers_; ///< Until all that was put in again has been heard.
    KeySet plannedUnseen_;     ///< With which the grabs were made.
};

} // namespace velorin

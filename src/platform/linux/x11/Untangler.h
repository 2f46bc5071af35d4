/// Takes out of the server's queue what was pressed behind a key that waits for its answer, and puts it in
/// again as if that key had never been: nothing lost, nothing twice, nothing in another order, and no
/// modifier of the swallowed key upon it.
///
/// While the keyboard is held, keys come to us as we ask for them, and whatever we post queues up behind what
/// the user does. So: everything that waits is taken, up to a marker of ours. Then all keys are brought back
/// to what they were, a marker, and what the user did is done once more. When the marker comes round and the
/// user did nothing meanwhile, the keyboard is let go of right there: what we post the second time goes its
/// usual way. If the user did something, that is taken in and it begins again.
///
/// What the user does from the first marker on is taken from what is heard at once, not from what is handed
/// out: the server hands out no press of a key that we have down for the moment, no release of one that we
/// have up, and what falls among our keys would come before them or after them.
#pragma once

#include "platform/linux/x11/KeyboardMap.h"
#include "platform/linux/x11/SharedKeyState.h"
#include "platform/linux/x11/TapConnections.h"

#include <functional>
#include <map>

namespace velorin {

class Untangler final {
public:
    struct Calls {
        std::function<void()> listen; ///< Has the connections read what has arrived.
        /// These are put in again as soon as it returns.
        std::function<void(const std::vector<TapKey>&)> repeating;
    };

    /// The marker is a key that is up and means nothing.
    Untangler(TapConnections& connections, SharedKeyState& shared, std::deque<TapKey>& grabbedKeys,
              xcb_keycode_t marker, Calls calls);

    /// For a press that waits and is to arrive as a press of its own. Gives what was put in again: the keys
    /// of it that are down are held by our device from now on, in the user's stead.
    [[nodiscard]] std::vector<TapKey> run(const TapKey& waiting);

    /// For what came in place of the release of the swallowed key: ours, which is on its way. Nothing: that
    /// of the user is on its way, and we posted none.
    [[nodiscard]] std::vector<TapKey> runAfterSwallowing(const TapKey& swallowed,
                                                         std::optional<TapKey> first);

    /// For a press that waits and is to be swallowed, so that a tap of another key goes before everything
    /// else: the user may have let go of all keys by now. `isReleased`: of the swallowed one for certain.
    [[nodiscard]] std::vector<TapKey> swallowInCompany(const TapKey& swallowed, xcb_keycode_t company,
                                                       bool isReleased);

private:
    /// So many shall come, those included that were asked for before.
    void ask(std::size_t keys);
    /// After more were asked than there may have been keys.
    void countQuestions();
    [[nodiscard]] std::optional<TapKey> take();
    [[nodiscard]] std::optional<TapKey> takeBeforeMarkerEnds();
    [[nodiscard]] bool isMarker(const TapKey& key) const;
    void post(bool isPress, xcb_keycode_t key);
    void send(bool isPress, xcb_keycode_t key);
    void postMarker();
    void note(const TapKey& key);
    /// Gives how many changes will come for certain.
    std::size_t undo();
    void settle();
    void noteReleased(const TapKey& swallowed);
    void takeUpTo(const TapKey& swallowed, std::optional<TapKey> key);
    void takeAll(bool isFirst);
    [[nodiscard]] bool tryToRepeat();
    [[nodiscard]] std::vector<TapKey> repeat();
    /// Behind the last of what we posted from the marker on, in what is heard at once. Waits for it.
    [[nodiscard]] std::size_t listenToPosts();
    /// Nothing as long as not all of it is heard.
    [[nodiscard]] std::optional<std::size_t> endOfPosts() const;
    [[nodiscard]] bool didUserMore();
    /// True if the user did something up to there.
    bool catchWhatWasHeard(std::size_t end);
    void hold();
    void letGo();

    TapConnections& connections_;
    SharedKeyState& shared_;
    std::deque<TapKey>& grabbedKeys_;
    xcb_keycode_t marker_;
    Calls calls_;
    std::vector<TapKey> posted_; ///< From the last marker on.
    std::size_t heard_ = 0;      ///< How much of what is heard is looked at.
    std::size_t asked_ = 0;      ///< Keys that the server has yet to hand out.
    /// What became of a key since the keyboard waits, by the user's doing and by ours.
    struct Change {
        bool wasDown = false;
        bool isDown = false;
        bool isOdd = false; ///< Pressed an odd number of times: a lock would be set by it.
    };
    std::map<xcb_keycode_t, Change> done_;
    KeySet ours_;                ///< What our device may hold down, whatever the keyboard as a whole does.
    KeySet outlived_;            ///< What it held for nobody, and was released.
    std::vector<TapKey> caught_; ///< What is to be repeated.
};

} // namespace velorin

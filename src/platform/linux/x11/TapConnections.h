/// The two connections of the tap. One grabs, answers and posts; the other hears every key of every keyboard,
/// whoever gets it. They are two, so that what is heard can be read while an answer is being thought about.
///
/// Each key is heard twice: at once, as it is pressed on its own keyboard, and when its turn comes, which is
/// later while a key waits for its answer. Only what came at once tells what the user and we did in which
/// order.
#pragma once

#include "platform/linux/x11/KeyboardMap.h"
#include "platform/linux/x11/XConnection.h"

#include <array>
#include <deque>
#include <optional>
#include <set>
#include <tl/expected.hpp>

namespace velorin {

/// A key as one of the connections tells of it. Both tell the same time for the same key.
struct TapKey {
    bool isPress = false;
    xcb_keycode_t key = 0;
    std::uint16_t device = 0; ///< That tells of it: the source, or the master keyboard that it belongs to.
    std::uint16_t source = 0; ///< The device under somebody's fingers, or that of synthetic keys.
    xcb_timestamp_t time = 0;
    std::uint32_t modifiers = 0; ///< Before it; told of grabbed keys only.
    std::uint32_t locked = 0;
    bool isOurs = false; ///< We posted it on the user's device; told of heard keys only.
};

/// Asks for version 2.2 of the input extension, and says whether the server has it.
[[nodiscard]] bool hasInput22(const XConnection& connection);

/// Why there are no connections.
enum class TapRefusal {
    noServer, ///< Nobody listens, or lets us in.
    late,     ///< It owes an answer; the next attempt may have it.
    unfit,    ///< It lacks XInput 2.2 or XTEST.
    unwanted, ///< Nobody waits for them any more.
};

class TapConnections final {
public:
    /// `patience`: for each answer. For the first of all there is none, see TapConnector.
    [[nodiscard]] static tl::expected<std::unique_ptr<TapConnections>, TapRefusal>
    open(std::chrono::milliseconds patience = serverDeadline);

    [[nodiscard]] XConnection& grabs() const { return *grabs_; }
    [[nodiscard]] XConnection& raw() const { return *raw_; }
    [[nodiscard]] std::uint16_t masterKeyboard() const { return masterKeyboard_; }
    [[nodiscard]] bool isSynthetic(const TapKey& key) const {
        return key.isOurs || syntheticDevices_.contains(key.source);
    }
    [[nodiscard]] bool isBroken() const { return grabs_->isBroken() || raw_->isBroken(); }

    /// Takes what has arrived, to the end of the queues. True if the keyboard's map or the devices changed.
    /// `rawKeys` are those whose turn has come.
    bool read(std::deque<TapKey>& grabbedKeys, std::deque<TapKey>& rawKeys);
    /// The devices are read as they change; where the server owed the answer, this asks again. False if it
    /// still does.
    bool readDevicesAgain() { return !areDevicesOld_ || readDevices(serverDeadline); }
    [[nodiscard]] bool areDevicesOld() const { return areDevicesOld_; }

    /// From now on it is told when other programs come to the front or leave, or no longer.
    void watchOthers(bool isWatching);
    /// Whether some did, since this was asked last.
    [[nodiscard]] bool haveOthersChanged() { return std::exchange(haveOthersChanged_, false); }

    /// What was heard at once, since it was forgotten last.
    [[nodiscard]] const std::deque<TapKey>& heardAtOnce() const { return heardAtOnce_; }
    void forgetHeardAtOnce() { heardAtOnce_.clear(); }
    /// Whether the user or we have pressed the key, or released it, and its turn has not come. As of the last
    /// reading.
    [[nodiscard]] bool isToCome(bool isPress, xcb_keycode_t key) const {
        return toCome_[isPress ? 1 : 0][key] > 0;
    }
    /// About how many keys wait for their turn: those that are on their way to us are not counted, or still.
    [[nodiscard]] std::size_t waiting() const;
    /// No key waits: what has not come by now never will.
    void nothingIsToCome() {
        toCome_ = {};
        forgetHeardAtOnce();
    }
    /// What the user holds down, also if its turn has not come.
    [[nodiscard]] const KeySet& userDownByNow() const { return userDownByNow_; }
    void assumeUserDown(const KeySet& keys) { userDownByNow_ = keys; }

    void readGrabbed(std::deque<TapKey>& grabbedKeys);
    /// Takes the next of them, which it waits for. Nothing when the server does not tell of one in time.
    [[nodiscard]] std::optional<TapKey> nextGrabbed(std::deque<TapKey>& grabbedKeys);

    // Requests on the grabbing connection; they go out with the next flush.
    void replay() const; ///< The press that waits goes to the application.
    /// It goes nowhere. The next key comes to us as well, and waits like this one; so do as many as are asked
    /// for, all but the last of which go nowhere either.
    void step(std::size_t keys = 1) const;
    void post(bool isPress, xcb_keycode_t key) const; ///< On the device of synthetic keys.
    /// On the device on which the press was made: another device would be a change of the keyboard's map,
    /// which the server tells to everybody. A release of the marker goes before it, a key that no keyboard
    /// has, by which the one that is ours is known when it is heard.
    void postRelease(const TapKey& press, xcb_keycode_t marker);
    /// Holds the keyboard, so that no release ends it; whatever is pressed waits. For a press that waits, so
    /// that nobody else can have it.
    void hold() const;
    /// Lets go of it: what waits goes its usual way.
    void letGo() const;
    void lock(std::uint32_t modifiers, std::uint32_t values) const;

private:
    TapConnections(std::unique_ptr<XConnection> grabs, std::unique_ptr<XConnection> raw)
        : grabs_(std::move(grabs)), raw_(std::move(raw)) {}
    [[nodiscard]] std::optional<TapRefusal> setUp(std::chrono::milliseconds patience);
    [[nodiscard]] bool readDevices(std::chrono::milliseconds patience);
    [[nodiscard]] bool tellsOfOthers(const xcb_generic_event_t& event) const;
    [[nodiscard]] std::optional<TapKey> keyIn(const xcb_generic_event_t& event) const;
    void hear(TapKey key, std::deque<TapKey>& rawKeys);

    std::unique_ptr<XConnection> grabs_;
    std::unique_ptr<XConnection> raw_;
    std::uint8_t opcode_ = 0;
    std::uint16_t masterKeyboard_ = 0;
    std::uint8_t firstInputEvent_ = 0;
    std::set<std::uint16_t> syntheticDevices_;
    /// Our releases on the keyboards of the user that are still to be heard.
    class OwnReleases {
    public:
        void add(std::uint16_t device, xcb_keycode_t marker, xcb_keycode_t key) {
            releases_.push_back({device, marker, key});
        }
        void keepOnly(const std::set<std::uint16_t>& devices);
        /// Whether it is the next of them, or its marker.
        [[nodiscard]] bool take(const TapKey& heard);

    private:
        struct Release {
            std::uint16_t device = 0;
            xcb_keycode_t marker = 0;
            xcb_keycode_t key = 0;
            bool isNext = false; ///< The marker is heard.
        };
        std::deque<Release> releases_;
    };
    std::set<std::uint16_t> masterKeyboards_;
    std::array<OwnReleases, 2> ownReleases_; ///< When their turn comes; at once.
    std::deque<TapKey> heardAtOnce_;
    std::array<std::array<int, 256>, 2> toCome_{}; ///< Releases; presses.
    KeySet userDownByNow_;
    bool areDevicesOld_ = false;
    bool isWatchingOthers_ = false;
    std::vector<xcb_atom_t> propertiesOfOthers_;
    bool haveOthersChanged_ = false;
};

} // namespace velorin

/// The two connections of the tap. One grabs, answers and posts; the other hears every key of every keyboard,
/// whoever gets it. They are two, so that what is heard can be read while an answer is being thought about.
#pragma once

#include "platform/linux/x11/XConnection.h"

#include <deque>
#include <optional>
#include <set>

namespace velorin {

/// A key as one of the connections tells of it. Both tell the same time for the same key.
struct TapKey {
    bool isPress = false;
    xcb_keycode_t key = 0;
    std::uint16_t source = 0; ///< The device under somebody's fingers, or that of synthetic keys.
    xcb_timestamp_t time = 0;
    std::uint32_t modifiers = 0; ///< Before it; told of grabbed keys only.
    std::uint32_t locked = 0;
};

/// Asks for version 2.2 of the input extension, and says whether the server has it.
[[nodiscard]] bool hasInput22(const XConnection& connection);

class TapConnections final {
public:
    /// Null when there is no server, or one without XInput 2.2 or XTEST.
    [[nodiscard]] static std::unique_ptr<TapConnections> open();

    [[nodiscard]] XConnection& grabs() const { return *grabs_; }
    [[nodiscard]] XConnection& raw() const { return *raw_; }
    [[nodiscard]] std::uint16_t masterKeyboard() const { return masterKeyboard_; }
    [[nodiscard]] bool isSynthetic(const TapKey& key) const { return syntheticDevices_.contains(key.source); }
    [[nodiscard]] bool isBroken() const { return grabs_->isBroken() || raw_->isBroken(); }

    /// Takes what has arrived, to the end of the queues. True if the keyboard's map or the devices changed.
    bool read(std::deque<TapKey>& grabbedKeys, std::deque<TapKey>& rawKeys);

    void readGrabbed(std::deque<TapKey>& grabbedKeys);
    /// Takes the next of them, which it waits for. Nothing when the server does not tell of one in time.
    [[nodiscard]] std::optional<TapKey> nextGrabbed(std::deque<TapKey>& grabbedKeys);

    // Requests on the grabbing connection; they go out with the next flush.
    void replay() const; ///< The press that waits goes to the application.
    /// It goes nowhere. The next key comes to us as well, and waits like this one; so do as many as are asked
    /// for, all but the last of which go nowhere either.
    void step(std::size_t keys = 1) const;
    void post(bool isPress, xcb_keycode_t key) const;
    /// Holds the keyboard, so that no release ends it; whatever is pressed waits. For a press that waits, so
    /// that nobody else can have it.
    void hold() const;
    /// Lets go of it: what waits goes its usual way.
    void letGo() const;
    void lock(std::uint32_t modifiers, std::uint32_t values) const;

private:
    TapConnections(std::unique_ptr<XConnection> grabs, std::unique_ptr<XConnection> raw)
        : grabs_(std::move(grabs)), raw_(std::move(raw)) {}
    [[nodiscard]] bool setUp();
    [[nodiscard]] bool readDevices();
    [[nodiscard]] std::optional<TapKey> keyIn(const xcb_generic_event_t& event) const;

    std::unique_ptr<XConnection> grabs_;
    std::unique_ptr<XConnection> raw_;
    std::uint8_t opcode_ = 0;
    std::uint16_t masterKeyboard_ = 0;
    std::set<std::uint16_t> syntheticDevices_;
};

} // namespace velorin

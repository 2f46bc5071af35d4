/// A filter in the path of the session's key events: sees them before any application does, and may keep
/// them to itself.
///
/// The tap is told beforehand which keys may be swallowed, and sees no more than it must of all others:
/// every other key of the machine goes its way as if we were not there.
#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>
#include <tl/expected.hpp>
#include <vector>

namespace velorin {

/// One raw event, in the numbers of the virtual keyboard: `flags` is the device-independent flags word
/// after the event (command 0x100000, control 0x40000, option 0x80000, shift 0x20000, Fn 0x800000).
struct KeyEvent {
    static constexpr quint32 keyDown = 10;
    static constexpr quint32 keyUp = 11;
    static constexpr quint32 flagsChanged = 12;

    quint32 type = 0;
    quint16 keyCode = 0;
    quint64 flags = 0;
    bool isAutorepeat = false;
};

enum class TapAnswer { pass, swallow };

/// A key that may be swallowed, and with which modifiers held: each entry is a union of flag bits.
struct TappedKey {
    quint16 keyCode = 0;
    std::vector<quint64> modifierFlags;

    bool operator==(const TappedKey&) const = default;
};

enum class EventTapError {
    notPermitted,       ///< The session does not let us filter keys.
    unsupportedSession, ///< A session of a kind that this tap does not serve (Wayland).
};

/// Why a tap that runs does nothing for now.
enum class TapTrouble {
    serverIsLate, ///< The display server owes an answer, or ended the connection.
    keysAreTaken, ///< Another program has a key in all its combinations.
};

/// What becomes of a tap that was started. All is called on the tap's own thread, and must not block.
struct TapListener {
    /// Once: the tap cannot go on and will not come back by itself (the display server is gone). It is then
    /// still to be stopped before it is started again.
    std::function<void()> onLost{};
    /// For now keys are not seen; the tap does what it can to come back.
    std::function<void(TapTrouble)> onSuspended{};
    /// All keys are seen again. What came up meanwhile has been told to the handler before.
    std::function<void()> onResumed{};
};

class EventTap {
public:
    /// Called on the tap's own thread for each event, in order; it must not block.
    using Handler = std::function<TapAnswer(const KeyEvent&)>;

    virtual ~EventTap() = default;

    /// Starts the tap's thread and waits, a second at most, until keys are watched. Main thread. At most one
    /// tap runs at a time. Where the display server takes longer, the tap has been started all the same, and
    /// is suspended until then.
    [[nodiscard]] virtual tl::expected<void, EventTapError> start(Handler handler, TapListener listener) = 0;

    /// Ends the thread; the handler is not called any more when this returns. Main thread.
    virtual void stop() = 0;

    /// Replaces the set of keys that may be swallowed. Main thread; before or after `start`.
    virtual void setTappedKeys(std::vector<TappedKey> keys) = 0;
};

} // namespace velorin

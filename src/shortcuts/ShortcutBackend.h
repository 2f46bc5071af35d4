/// Watches every key that may belong to a shortcut, says which events are kept from other applications, and
/// hands the edges of the shortcuts to the main thread.
///
///     ShortcutBackend backend(tap, clock);
///     backend.onEvent = [&](ShortcutEvent event) { … };
///     backend.setConfiguration(preferences.shortcuts);
///     backend.ensureTap();
///
/// All operations and callbacks belong to the main thread. The tap's own thread only runs each event through
/// the matcher, under a lock that is held for nothing else, and posts the edges, one queued call each, in
/// the order of the events. Edges that arrive when the backend is gone are dropped.
///
/// A tap that is suspended, as while the display server is late, comes back by itself; after two seconds the
/// user is told, and again when it works. One that is lost hears no releases any more: what was held ends.
///
/// Each event is logged, on a thread of its own: whoever reads the log must not hold up the keyboard.
///
/// The tap is never torn down because all shortcuts became disabled: then there is no key to swallow.
#pragma once

#include "platform/Clock.h"
#include "platform/EventTap.h"
#include "platform/LogThread.h"
#include "shortcuts/ShortcutMatcher.h"

#include <QObject>

#include <functional>
#include <mutex>
#include <optional>

namespace velorin {

class ShortcutBackend final {
public:
    /// Tap and clock must outlive the backend, which starts with the default configuration.
    ShortcutBackend(EventTap& tap, Clock& clock);
    ~ShortcutBackend();
    ShortcutBackend(const ShortcutBackend&) = delete;
    ShortcutBackend& operator=(const ShortcutBackend&) = delete;

    std::function<void(ShortcutEvent)> onEvent;
    /// With a sentence for the user, within `ensureTap`, and when a running tap has been suspended for a
    /// while.
    std::function<void(const QString& message)> onTapUnavailable;
    /// Within `ensureTap` when it starts a tap or fails to, when a running tap was lost, and when one of
    /// which the user was told that it is suspended works again.
    std::function<void(bool isActive)> onTapStatusChanged;

    /// True if a tap runs when it returns. A running tap is left alone.
    bool ensureTap();

    /// True from the start of a tap on, until it is lost; also while it is suspended.
    [[nodiscard]] bool tapActive() const { return tapActive_; }

    /// An equal configuration leaves a running hold undisturbed; any other ends it without an edge.
    void setConfiguration(const ShortcutConfiguration& configuration);
    [[nodiscard]] ShortcutConfiguration configuration() const;

    /// While capturing every key goes its way, so that a new shortcut can be recorded. Entering forgets what
    /// was held, without an edge for what was active.
    void setCaptureMode(bool enabled);

private:
    TapAnswer process(const KeyEvent& event);
    void post(ShortcutEvent event);
    void reportUnavailable(EventTapError error);
    [[nodiscard]] TapListener listener();
    void markLost();
    void markSuspended(TapTrouble trouble);
    void markResumed();
    void tellSuspended();
    void releaseAll();
    void stopTap();
    void tellTappedKeys();

    EventTap& tap_;
    Clock& clock_;
    bool tapActive_ = false;
    bool tapStarted_ = false; ///< Also of a tap that was lost and still has its thread.
    std::optional<std::vector<TappedKey>> toldKeys_;

    mutable std::mutex lock_;
    ShortcutMatcher matcher_;  ///< Guarded by the lock.
    bool captureMode_ = false; ///< Guarded by the lock.

    std::optional<TapTrouble> trouble_;
    bool isTroubleTold_ = false;
    Subscription troubleTimer_; ///< Until the user is told.

    LogThread log_;
    QObject mainThread_; ///< What is queued for it goes with it.
};

} // namespace velorin

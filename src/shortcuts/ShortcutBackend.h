/// Watches every key that may belong to a shortcut, says which events are kept from other applications, and
/// hands the edges of the shortcuts to the main thread.
///
///     ShortcutBackend backend(tap);
///     backend.onEvent = [&](ShortcutEvent event) { … };
///     backend.setConfiguration(preferences.shortcuts);
///     backend.ensureTap();
///
/// All operations and callbacks belong to the main thread. The tap's own thread only runs each event through
/// the matcher, under a lock that is held for nothing else, and posts the edges, one queued call each, in
/// the order of the events. Edges that arrive when the backend is gone are dropped.
///
/// The tap is never torn down because all shortcuts became disabled: then there is no key to swallow.
#pragma once

#include "platform/EventTap.h"
#include "shortcuts/ShortcutMatcher.h"

#include <QObject>

#include <functional>
#include <mutex>
#include <optional>

namespace velorin {

class ShortcutBackend final {
public:
    /// The tap must outlive the backend, which starts with the default configuration.
    explicit ShortcutBackend(EventTap& tap);
    ~ShortcutBackend();
    ShortcutBackend(const ShortcutBackend&) = delete;
    ShortcutBackend& operator=(const ShortcutBackend&) = delete;

    std::function<void(ShortcutEvent)> onEvent;
    /// With a sentence for the user, within `ensureTap`.
    std::function<void(const QString& message)> onTapUnavailable;
    /// Within `ensureTap` when it starts a tap or fails to, and when a running tap was lost.
    std::function<void(bool isActive)> onTapStatusChanged;

    /// True if a tap runs when it returns. A running tap is left alone.
    bool ensureTap();

    /// True from the start of a tap on, until it is lost.
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
    void markLost();
    void stopTap();
    void tellTappedKeys();

    EventTap& tap_;
    bool tapActive_ = false;
    bool tapStarted_ = false; ///< Also of a tap that was lost and still has its thread.
    std::optional<std::vector<TappedKey>> toldKeys_;

    mutable std::mutex lock_;
    ShortcutMatcher matcher_;  ///< Guarded by the lock.
    bool captureMode_ = false; ///< Guarded by the lock.

    QObject mainThread_; ///< What is queued for it goes with it.
};

} // namespace velorin

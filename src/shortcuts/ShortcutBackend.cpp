#include "shortcuts/ShortcutBackend.h"

#include "platform/Log.h"
#include "shortcuts/TappedKeys.h"

#include <QCoreApplication>
#include <QStringList>

namespace velorin {
namespace {

using Decision = ShortcutMatcher::ConsumeDecision;

bool isKeyboardEvent(quint32 type) {
    return type == KeyEvent::keyDown || type == KeyEvent::keyUp || type == KeyEvent::flagsChanged;
}

const char* typeName(quint32 type) {
    switch (type) {
    case KeyEvent::keyDown:
        return "keyDown";
    case KeyEvent::keyUp:
        return "keyUp";
    default:
        return "flagsChanged";
    }
}

QString names(const std::vector<ShortcutEvent>& events) {
    QStringList names;
    for (const auto event : events)
        names += name(event);
    return names.join(u',');
}

QString message(EventTapError error) {
    switch (error) {
    case EventTapError::notPermitted:
        return QCoreApplication::translate(
            "ShortcutBackend",
            "Accessibility permission is required for the activation shortcut. Grant it in System Settings > "
            "Privacy & Security > Accessibility, then click Relaunch.");
    case EventTapError::unsupportedSession:
        return QCoreApplication::translate(
            "ShortcutBackend", "Velorin needs an X11 session for now. Choose one when you log in.");
    }
    Q_UNREACHABLE();
}

} // namespace

ShortcutBackend::ShortcutBackend(EventTap& tap)
    : tap_(tap), matcher_{.configuration = ShortcutConfiguration::defaultConfiguration()} {}

ShortcutBackend::~ShortcutBackend() { stopTap(); }

bool ShortcutBackend::ensureTap() {
    if (tapActive_)
        return true;
    stopTap();
    tellTappedKeys();
    const auto started = tap_.start([this](const KeyEvent& event) { return process(event); },
                                    [this] {
                                        QMetaObject::invokeMethod(
                                            &mainThread_, [this] { markLost(); }, Qt::QueuedConnection);
                                    });
    if (!started) {
        reportUnavailable(started.error());
        return false;
    }
    tapStarted_ = true;
    tapActive_ = true;
    if (onTapStatusChanged)
        onTapStatusChanged(true);
    return true;
}

void ShortcutBackend::setConfiguration(const ShortcutConfiguration& configuration) {
    {
        const std::scoped_lock guard(lock_);
        matcher_.update(configuration);
    }
    tellTappedKeys();
}

ShortcutConfiguration ShortcutBackend::configuration() const {
    const std::scoped_lock guard(lock_);
    return matcher_.configuration;
}

void ShortcutBackend::setCaptureMode(bool enabled) {
    {
        const std::scoped_lock guard(lock_);
        if (enabled && !captureMode_)
            matcher_.reset();
        captureMode_ = enabled;
    }
    tellTappedKeys();
}

TapAnswer ShortcutBackend::process(const KeyEvent& event) {
    const bool isKey = event.type == KeyEvent::keyDown || event.type == KeyEvent::keyUp;
    if (isKey && event.isAutorepeat)
        return TapAnswer::pass;
    Decision decision = Decision::passthrough;
    std::vector<ShortcutEvent> edges;
    {
        const std::scoped_lock guard(lock_);
        if (captureMode_)
            return TapAnswer::pass;
        decision = matcher_.apply(event);
        edges = matcher_.takePendingEvents();
    }
    if (isKeyboardEvent(event.type))
        qCDebug(tapLog, "raw %s code=%lld flags=%llu decision=%s events=%s", typeName(event.type),
                static_cast<long long>(event.keyCode), static_cast<unsigned long long>(event.flags),
                qUtf8Printable(name(decision)), qUtf8Printable(names(edges)));
    for (const auto edge : edges)
        post(edge);
    return decision == Decision::consume ? TapAnswer::swallow : TapAnswer::pass;
}

void ShortcutBackend::post(ShortcutEvent event) {
    QMetaObject::invokeMethod(
        &mainThread_,
        [this, event] {
            if (onEvent)
                onEvent(event);
        },
        Qt::QueuedConnection);
}

void ShortcutBackend::reportUnavailable(EventTapError error) {
    tapActive_ = false;
    if (onTapUnavailable)
        onTapUnavailable(message(error));
    if (onTapStatusChanged)
        onTapStatusChanged(false);
}

void ShortcutBackend::markLost() {
    // The thread of the lost tap is ended when the next one is asked for.
    tapActive_ = false;
    if (onTapStatusChanged)
        onTapStatusChanged(false);
}

void ShortcutBackend::stopTap() {
    if (std::exchange(tapStarted_, false))
        tap_.stop();
    tapActive_ = false;
}

void ShortcutBackend::tellTappedKeys() {
    ShortcutConfiguration tapped;
    {
        const std::scoped_lock guard(lock_);
        if (!captureMode_)
            tapped = matcher_.configuration;
    }
    // Trying all modifiers takes its time: not under the lock, for which a keystroke may be waiting.
    auto keys = tappedKeys(tapped);
    if (toldKeys_ == keys)
        return;
    toldKeys_ = keys;
    tap_.setTappedKeys(std::move(keys));
}

} // namespace velorin

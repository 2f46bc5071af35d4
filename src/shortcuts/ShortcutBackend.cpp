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

QString message(TapTrouble trouble) {
    switch (trouble) {
    case TapTrouble::serverIsLate:
        return QCoreApplication::translate(
            "ShortcutBackend", "Shortcuts do not work at the moment: the display server does not answer.");
    case TapTrouble::keysAreTaken:
        return QCoreApplication::translate(
            "ShortcutBackend", "Shortcuts do not work at the moment: another program has taken their keys.");
    }
    Q_UNREACHABLE();
}

/// Most troubles are over before anybody can press a key.
constexpr std::chrono::seconds troublePatience{2};

} // namespace

ShortcutBackend::ShortcutBackend(EventTap& tap, Clock& clock)
    : tap_(tap), clock_(clock), matcher_{.configuration = ShortcutConfiguration::defaultConfiguration()} {}

ShortcutBackend::~ShortcutBackend() { stopTap(); }

bool ShortcutBackend::ensureTap() {
    if (tapActive_)
        return true;
    stopTap();
    tellTappedKeys();
    const auto started = tap_.start([this](const KeyEvent& event) { return process(event); }, listener());
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
    if (isKeyboardEvent(event.type) && tapLog().isDebugEnabled())
        log_.write([event, decision, edges] {
            qCDebug(tapLog, "raw %s code=%lld flags=%llu decision=%s events=%s", typeName(event.type),
                    static_cast<long long>(event.keyCode), static_cast<unsigned long long>(event.flags),
                    qUtf8Printable(name(decision)), qUtf8Printable(names(edges)));
        });
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

TapListener ShortcutBackend::listener() {
    const auto onMainThread = [this](auto action) {
        QMetaObject::invokeMethod(&mainThread_, std::move(action), Qt::QueuedConnection);
    };
    return {
        .onLost = [=, this] { onMainThread([this] { markLost(); }); },
        .onSuspended = [=, this](TapTrouble trouble) { onMainThread([=, this] { markSuspended(trouble); }); },
        .onResumed = [=, this] { onMainThread([this] { markResumed(); }); }};
}

void ShortcutBackend::markLost() {
    // The thread of the lost tap is ended when the next one is asked for.
    tapActive_ = false;
    trouble_.reset();
    isTroubleTold_ = false;
    troubleTimer_ = {};
    releaseAll();
    if (onTapStatusChanged)
        onTapStatusChanged(false);
}

void ShortcutBackend::markSuspended(TapTrouble trouble) {
    if (!tapActive_)
        return; // the start came to nothing, and that was told
    const bool isKnown = std::exchange(trouble_, trouble).has_value();
    if (isTroubleTold_)
        tellSuspended();
    else if (!isKnown)
        troubleTimer_ = clock_.after(troublePatience, [this] { tellSuspended(); });
}

void ShortcutBackend::tellSuspended() {
    isTroubleTold_ = true;
    if (onTapUnavailable)
        onTapUnavailable(message(*trouble_));
    if (onTapStatusChanged)
        onTapStatusChanged(false);
}

void ShortcutBackend::markResumed() {
    trouble_.reset();
    troubleTimer_ = {};
    if (std::exchange(isTroubleTold_, false) && onTapStatusChanged)
        onTapStatusChanged(true);
}

void ShortcutBackend::releaseAll() {
    ShortcutInputState held;
    {
        const std::scoped_lock guard(lock_);
        held = matcher_.state;
    }
    for (const auto key : held.pressedKeyCodes)
        (void)process({.type = KeyEvent::keyUp, .keyCode = key});
    for (const auto key : held.pressedModifierKeyCodes)
        (void)process({.type = KeyEvent::flagsChanged, .keyCode = key});
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

#include "Launcher.h"
#include "Stage.h"

#include <algorithm>
#include <poll.h>
#include <thread>

namespace velorin::tap {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 5s;
constexpr quint16 f9 = 101;

/// Another client's shortcut on the root window.
class Shortcut final {
public:
    Shortcut(int key, std::uint16_t modifiers) : connection_(XConnection::open()) {
        xcb_grab_key(connection_->get(), 0, connection_->root(), modifiers, static_cast<xcb_keycode_t>(key),
                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        connection_->sync(Deadline(patience));
    }
    /// Waits for one.
    [[nodiscard]] int presses() {
        const Deadline deadline(patience);
        int count = 0;
        while (count == 0 && !deadline.hasPassed()) {
            pollfd waiting{connection_->fileDescriptor(), POLLIN, 0};
            poll(&waiting, 1, deadline.pollTimeout());
            while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())})
                count += (event->response_type & 0x7f) == XCB_KEY_PRESS ? 1 : 0;
        }
        return count;
    }

private:
    std::unique_ptr<XConnection> connection_;
};

void chord(PhysicalKeyboard& user, int modifier, int key) {
    user.press(modifier);
    user.tap(key);
    user.release(modifier);
    user.sync();
}

ShortcutConfiguration onF9() {
    auto configuration = ShortcutConfiguration::disabled();
    configuration.hold = keyBinding(f9, ShortcutModifiers::control, KeyCodeSet{59});
    configuration.toggle = keyBinding(f9, ShortcutModifiers::command, KeyCodeSet{54, 55});
    return configuration;
}

/// Whether our two chords, the window manager's Alt+F9, and another client's Shift+F9 each do their own.
bool eachDoesItsOwn(Stage& stage, TapSubject& subject, Shortcut& other) {
    bool isGood = true;
    const auto expect = [&](bool isTrue, const char* what) {
        if (!isTrue)
            Report::note(what);
        isGood = isGood && isTrue;
    };
    const auto window = stage.window();
    chord(stage.user, Key::leftControl, Key::f9);
    expect(subject.lineWith("edge holdActivated").has_value(), "Ctrl+F9 does not begin a hold");
    chord(stage.user, Key::leftSuper, Key::f9);
    expect(subject.lineWith("edge toggleActivated").has_value(), "Super+F9 does not toggle");
    chord(stage.user, Key::leftShift, Key::f9);
    const int presses = other.presses();
    expect(presses == 1, ("another client's Shift+F9 came " + std::to_string(presses) + " times").c_str());
    stage.user.tap(Key::f9);
    stage.user.tap(Key::zero);
    bool hasF9 = false;
    const auto keys = window->keysThrough(Key::zero);
    if (!isGood)
        Report::note("the window got " + toString(keys));
    for (const auto& key : keys)
        hasF9 = hasF9 || (key.key == Key::f9 && key.isPress && key.modifiers == 0);
    expect(hasF9, "a plain F9 does not reach the window");
    chord(stage.user, Key::leftAlt, Key::f9);
    expect(window->waitFor([](const auto& event) { // hidden, or another size
        const int type = event.response_type & 0x7f;
        return type == XCB_UNMAP_NOTIFY || type == XCB_CONFIGURE_NOTIFY;
    }),
           "the window manager's Alt+F9 is dead");
    while (subject.line(0)) {
    }
    return isGood;
}

void measureShortcuts(Stage& stage) {
    bool isGood = true;
    {
        Shortcut other(Key::f9, XCB_MOD_MASK_SHIFT);
        const auto subject = stage.start(onF9());
        isGood = eachDoesItsOwn(stage, *subject, other);
    }
    {
        const auto subject = stage.start(onF9());
        Shortcut other(Key::f9, XCB_MOD_MASK_SHIFT);
        isGood = eachDoesItsOwn(stage, *subject, other) && isGood;
    }
    stage.report.row(
        "the same key with other modifiers: the window manager, another client, whoever came first",
        isGood ? "each does its own" : "not all", "each does its own", isGood);
}

bool tapsAlone(Stage& stage, Launcher& launcher) {
    stage.user.tap(Key::leftSuper);
    stage.user.sync();
    return launcher.opened() == 1;
}

/// How often it opened in rounds of the toggle, with the keys let go of in either order; -1 if it is dead.
int opensWithToggle(Stage& stage, TapSubject& subject, Launcher& launcher, TestWindow& window,
                    bool needsEdge) {
    int opened = 0;
    for (int round = 0; round < stage.options.rounds; ++round) {
        if (!tapsAlone(stage, launcher))
            return -1;
        stage.user.press(Key::leftSuper);
        stage.user.press(Key::rightControl);
        const bool isSuperFirst = round % 2 == 1;
        // Some let go faster than anybody could answer.
        if (round % 4 >= 2)
            std::this_thread::sleep_for(std::chrono::milliseconds(stage.below(30)));
        stage.user.release(isSuperFirst ? Key::leftSuper : Key::rightControl);
        stage.user.release(isSuperFirst ? Key::rightControl : Key::leftSuper);
        stage.user.sync();
        if (needsEdge && !subject.lineWith("edge toggleActivated"))
            return -1;
        if (needsEdge && !subject.lineWith("edge holdDeactivated"))
            return -1;
        stage.user.tap(Key::zero); // when that has arrived, all before has
        (void)window.keysThrough(Key::zero);
        opened += launcher.opened();
    }
    return opened;
}

void measureLauncher(Stage& stage, Launcher::Kind kind, const char* what) {
    const auto window = stage.window();
    int opened = 0;
    bool isAlive = true;
    const auto count = [&](TapSubject& subject, Launcher& launcher) {
        // One that holds the keyboard from the press of Super on leaves us no shortcut with Super.
        const int times = opensWithToggle(stage, subject, launcher, *window, kind == Launcher::Kind::listens);
        isAlive = isAlive && times >= 0;
        opened += std::max(times, 0);
    };
    {
        Launcher launcher(kind);
        const auto subject = stage.start(ShortcutConfiguration::defaultConfiguration());
        count(*subject, launcher);
    }
    {
        const auto subject = stage.start(ShortcutConfiguration::defaultConfiguration());
        Launcher launcher(kind);
        count(*subject, launcher);
    }
    stage.report.row(what,
                     std::string(isAlive ? "opens on Super alone" : "is dead, or the toggle") +
                         ", opened by Super+Fn " + std::to_string(opened) + " times in " +
                         std::to_string(2 * stage.options.rounds),
                     "opens on Super alone, 0", isAlive && opened == 0);
}

} // namespace

void measureNeighbours(Stage& stage) {
    measureShortcuts(stage);
    measureLauncher(stage, Launcher::Kind::listens, "a launcher that listens for Super");
    measureLauncher(stage, Launcher::Kind::grabs, "a launcher that grabs Super");
}

} // namespace velorin::tap

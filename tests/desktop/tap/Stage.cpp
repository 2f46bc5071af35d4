#include "Stage.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <unistd.h>

namespace velorin::tap {

namespace {

// A window manager may still be busy with the changes of the map that keys of two devices bring.
constexpr auto patience = std::chrono::seconds(120);

constexpr auto openboxSettings = R"(<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc"><keyboard>
<keybind key="A-F9"><action name="Iconify"/></keybind>
</keyboard></openbox_config>
)";
constexpr auto i3Settings =
    "# i3 config file (v4)\nfont pango:monospace 8\nbindsym Mod1+F9 floating toggle\n";

std::string settingsFile(const std::string& name, const char* text) {
    const char* folder = std::getenv("TMPDIR");
    const std::string path =
        std::string(folder != nullptr ? folder : "/tmp") + "/" + name + "-" + std::to_string(getpid());
    std::ofstream(path) << text;
    return path;
}

} // namespace

Stage::Stage(const Options& chosen) : options(chosen), chance(chosen.seed) {
    startWindowManager();
    // Whether a key repeats depends on how long it takes to let go of it.
    const std::uint32_t off = XCB_AUTO_REPEAT_MODE_OFF;
    xcb_change_keyboard_control(user.connection().get(), XCB_KB_AUTO_REPEAT_MODE, &off);
    user.sync();
}

void Stage::startWindowManager() {
    const auto& name = options.windowManager;
    if (name == "openbox")
        server.startWindowManager({"openbox", "--config-file", settingsFile("openbox", openboxSettings)});
    else if (name == "i3")
        server.startWindowManager({"i3", "-c", settingsFile("i3", i3Settings)});
    else if (name == "xfwm4") // its own Alt+F9 hides the window
        server.startWindowManager({"xfwm4", "--compositor=off"});
    else
        throw std::runtime_error("no window manager is called " + name);
}

KeySet Stage::down() { return keysDown(user.connection(), Deadline(patience)).value(); }

std::unique_ptr<TapSubject> Stage::start(const ShortcutConfiguration& configuration) const {
    return std::make_unique<TapSubject>(options.subject, configuration.encoded().toStdString());
}

std::unique_ptr<TestWindow> Stage::window() {
    auto window = std::make_unique<TestWindow>();
    until("a window to get the keyboard", patience, [&] {
        window->focus();
        nudge();
        return hasKeyboard(window->id());
    });
    return window;
}

bool Stage::hasKeyboard(xcb_window_t window) {
    return user.connection().clientOf(focused()) == user.connection().clientOf(window);
}

std::pair<std::unique_ptr<ChildProcess>, xcb_window_t>
Stage::startProgram(const std::vector<std::string>& command) {
    auto program = std::make_unique<ChildProcess>(command);
    ClientProcesses processes(user.connection());
    RunningApplication application;
    application.processIdentifier = program->id();
    auto since = std::chrono::steady_clock::now();
    xcb_window_t window = 0;
    until(command.front() + " to get the keyboard", patience, [&] {
        const auto now = focused();
        if (now <= XCB_INPUT_FOCUS_POINTER_ROOT ||
            processes.processOf(now, Deadline(patience)) != program->id()) {
            window = 0;
            windows_.activate(application); // some window managers leave it to the user
            nudge();
            return false;
        }
        if (now != window) // its first window may be one of its start; the one that lasts is taken
            since = std::chrono::steady_clock::now();
        window = now;
        return millisecondsSince(since) > 700;
    });
    return {std::move(program), window};
}

xcb_window_t Stage::focused() {
    auto& connection = user.connection();
    const auto focus = connection.reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(connection.get()),
                                                                     Deadline(patience));
    return focus ? focus->focus : xcb_window_t{0};
}

void Stage::nudge() {
    // What a window manager has read but not looked at, it looks at with the next event.
    auto& connection = user.connection();
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, connection.root(),
                        connection.atom("_VELORIN_NUDGE"), XCB_ATOM_CARDINAL, 32, 0, nullptr);
    connection.sync(Deadline(patience));
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

bool Stage::holdWorks(PhysicalKeyboard& user, TapSubject& subject) {
    user.press(Key::rightControl);
    const bool began = subject.lineWith("edge holdActivated").has_value();
    user.release(Key::rightControl);
    return subject.lineWith("edge holdDeactivated").has_value() && began;
}

ShortcutBinding keyBinding(quint16 keyCode, ShortcutModifiers modifiers, std::optional<KeyCodeSet> exact) {
    return {.keyCode = keyCode,
            .modifiers = modifiers,
            .kind = ShortcutBindingKind::key,
            .exactModifierKeyCodes = std::move(exact)};
}

ShortcutBinding modifierBinding(quint16 keyCode, ShortcutModifiers modifiers,
                                std::optional<KeyCodeSet> exact) {
    auto binding = keyBinding(keyCode, modifiers, std::move(exact));
    binding.kind = ShortcutBindingKind::modifierKey;
    return binding;
}

void until(const std::string& what, std::chrono::milliseconds patience, const std::function<bool()>& look) {
    const Deadline deadline(patience);
    while (!look()) {
        if (deadline.hasPassed())
            throw std::runtime_error("too long waited for " + what);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

double millisecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

} // namespace velorin::tap

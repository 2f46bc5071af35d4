/// Where a proof takes place: an X server with a window manager, the user's keyboard, and the program's
/// shortcuts in a process of their own.
#pragma once

#include "Report.h"

#include "platform/linux/x11/KeyboardMap.h"
#include "platform/linux/x11/X11Windows.h"
#include "shortcuts/ShortcutConfiguration.h"
#include "tests/platform/linux/x11/support/PhysicalKeyboard.h"
#include "tests/platform/linux/x11/support/PrivateServer.h"
#include "tests/platform/linux/x11/support/TapSubject.h"
#include "tests/platform/linux/x11/support/TestWindow.h"

#include <chrono>
#include <random>

namespace velorin::tap {

/// X key codes of an ordinary keyboard.
namespace Key {
inline constexpr int leftShift = 50, rightShift = 62;
inline constexpr int leftControl = 37, rightControl = 105;
inline constexpr int leftAlt = 64, rightAlt = 108;
inline constexpr int leftSuper = 133, rightSuper = 134;
inline constexpr int letterB = 56, letterK = 45, letterM = 58, letterJ = 44;
inline constexpr int zero = 19;
inline constexpr int f7 = 73, f8 = 74, f9 = 75;
inline constexpr int scrollLock = 78, pause = 127;
} // namespace Key

/// What shortcuts call some of them.
namespace Code {
inline constexpr quint16 scrollLock = 129, pause = 130;
} // namespace Code

struct Options {
    std::string windowManager = "openbox";
    std::string subject; ///< The program that is proved.
    long presses = 200'000;
    int rate = 200; ///< Presses and releases a second.
    int kills = 500;
    int stops = 100;
    int longStops = 60;
    int longestStop = 120; ///< Seconds.
    int lateSeconds = 60;  ///< For which the server is late.
    int rounds = 50;       ///< Of each disturbance.
    int samples = 5'000;
    int idleSeconds = 60;
    unsigned seed = 1;
    std::string replay;     ///< Keys to be typed instead.
    int configuration = -1; ///< The only one to be tried; all of them when negative.
};

class Stage final {
public:
    explicit Stage(const Options& options);

    /// The keys that the server holds for down, whoever pressed them.
    [[nodiscard]] KeySet down();
    [[nodiscard]] std::unique_ptr<TapSubject> start(const ShortcutConfiguration& configuration) const;
    /// A window that has the keyboard.
    [[nodiscard]] std::unique_ptr<TestWindow> window();
    /// Starts a program, gives it the keyboard, and gives its window.
    [[nodiscard]] std::pair<std::unique_ptr<ChildProcess>, xcb_window_t>
    startProgram(const std::vector<std::string>& command);
    [[nodiscard]] bool hasKeyboard(xcb_window_t window);
    /// Whether the next thing that the subject says of edges is that a hold began, and then that it ended.
    [[nodiscard]] static bool holdWorks(PhysicalKeyboard& user, TapSubject& subject);

    const Options& options;
    PrivateServer server;
    PhysicalKeyboard user;
    Report report;
    std::mt19937 chance;

    [[nodiscard]] int below(int count) { return static_cast<int>(chance() % static_cast<unsigned>(count)); }

private:
    void startWindowManager();
    [[nodiscard]] xcb_window_t focused();
    void nudge();

    X11Windows windows_;
};

/// Key bindings that leave each other alone; `name` is what is shown.
[[nodiscard]] ShortcutBinding keyBinding(quint16 keyCode, ShortcutModifiers modifiers,
                                         std::optional<KeyCodeSet> exact = std::nullopt);
[[nodiscard]] ShortcutBinding modifierBinding(quint16 keyCode, ShortcutModifiers modifiers,
                                              std::optional<KeyCodeSet> exact = std::nullopt);

void until(const std::string& what, std::chrono::milliseconds patience, const std::function<bool()>& look);
[[nodiscard]] double millisecondsSince(std::chrono::steady_clock::time_point start);

// The measurements; each writes its rows.
void measureRandomKeys(Stage& stage);
void replayKeys(Stage& stage);
void measureDelays(Stage& stage);
void measureNeighbours(Stage& stage);
void measureKills(Stage& stage);
void measureStops(Stage& stage);
void measureLongStops(Stage& stage);
void measureLateServer(Stage& stage);
void measureDisturbances(Stage& stage);
void measureIdle(Stage& stage);

} // namespace velorin::tap

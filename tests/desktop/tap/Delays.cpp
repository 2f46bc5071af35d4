#include "Stage.h"

#include <algorithm>
#include <poll.h>
#include <thread>

namespace velorin::tap {

namespace {

using namespace std::chrono_literals;

constexpr auto pause = 2ms; // between two keys, so that none waits for the one before

/// A key that is measured: what is held for it, and what goes before each press of it.
struct Case {
    std::string what;
    std::function<void(PhysicalKeyboard&)> before;
    std::function<void(PhysicalKeyboard&)> after;
    std::vector<int> keys;
    bool mayAdd = true;
};

constexpr double medianLimit = 0.5;
constexpr double tailLimit = 5;

/// Milliseconds until the window has the press of each.
std::vector<double> delays(Stage& stage, TestWindow& window, const Case& measured, int samples) {
    std::vector<double> all;
    auto* c = window.connection().get();
    for (int i = 0; i < samples; ++i) {
        const int key = measured.keys[static_cast<std::size_t>(i) % measured.keys.size()];
        measured.before(stage.user);
        stage.user.sync();
        std::this_thread::sleep_for(pause);
        (void)window.keys(); // of what goes before
        const auto start = std::chrono::steady_clock::now();
        stage.user.press(key);
        bool isThere = false;
        const Deadline deadline(5s);
        while (!isThere && !deadline.hasPassed()) {
            while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(c)})
                isThere = isThere || ((event->response_type & 0x7f) == XCB_KEY_PRESS &&
                                      reinterpret_cast<const xcb_key_press_event_t&>(*event).detail == key);
            pollfd waiting{window.connection().fileDescriptor(), POLLIN, 0};
            if (!isThere)
                poll(&waiting, 1, deadline.pollTimeout());
        }
        all.push_back(millisecondsSince(start));
        stage.user.release(key);
        measured.after(stage.user);
    }
    return all;
}

void compare(Stage& stage, const ShortcutConfiguration& configuration, const Case& measured, int samples) {
    const auto window = stage.window();
    auto without = delays(stage, *window, measured, samples / 2);
    std::vector<double> with;
    {
        const auto subject = stage.start(configuration);
        with = delays(stage, *window, measured, samples);
    }
    const auto more = delays(stage, *window, measured, samples / 2);
    without.insert(without.end(), more.begin(), more.end());
    const double median = percentile(with, 50) - percentile(without, 50);
    const double tail = percentile(with, 99.9) - percentile(without, 99.9);
    stage.report.row(measured.what,
                     "median " + milliseconds(percentile(with, 50)) + " (no tap " +
                         milliseconds(percentile(without, 50)) + "), 99.9% " +
                         milliseconds(percentile(with, 99.9)) + " (no tap " +
                         milliseconds(percentile(without, 99.9)) + "), " + std::to_string(samples) + " each",
                     measured.mayAdd ? "added: median 0.5 ms, 99.9% 5 ms" : "added: none",
                     measured.mayAdd ? median < medianLimit && tail <= tailLimit : median < 0.05);
}

void measureEdges(Stage& stage, int samples) {
    const auto subject = stage.start(ShortcutConfiguration::defaultConfiguration());
    std::vector<double> all;
    for (int i = 0; i < samples; ++i) {
        const auto start = std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch());
        stage.user.press(Key::rightControl);
        const auto line = subject->lineWith("edge holdActivated");
        stage.user.release(Key::rightControl);
        const bool hasEnded = subject->lineWith("edge holdDeactivated").has_value();
        if (!line || !hasEnded) {
            stage.report.row("key down to the main thread", "no edge", "", false);
            return;
        }
        const auto at = std::stoll(line->substr(line->rfind(' ')));
        all.push_back(static_cast<double>(at - start.count()) / 1e6);
        std::this_thread::sleep_for(pause);
    }
    const double tail = percentile(all, 99);
    stage.report.row("key down to the main thread",
                     "median " + milliseconds(percentile(all, 50)) + ", 99% " + milliseconds(tail) + " of " +
                         std::to_string(samples),
                     "99% under 2 ms", tail < 2);
}

} // namespace

void measureDelays(Stage& stage) {
    using M = ShortcutModifiers;
    constexpr quint16 f8 = 100;
    const auto nothing = [](PhysicalKeyboard&) {};
    // Only the left Super: with the right one the tap sees the key and lets it go on.
    ShortcutConfiguration exact = ShortcutConfiguration::disabled();
    exact.toggle = keyBinding(f8, M::command, KeyCodeSet{55});
    compare(stage, exact,
            {"a bound key that passes",
             [](PhysicalKeyboard& user) { user.press(Key::rightSuper); },
             [](PhysicalKeyboard& user) { user.release(Key::rightSuper); },
             {Key::f8}},
            stage.options.samples);
    // After Super came up, F8 is down and no shortcut is active: what is pressed now was grabbed and passes.
    const Case modifiers{
        "a modifier that passes while a bound key is down",
        [](PhysicalKeyboard& user) {
            user.press(Key::leftSuper);
            user.press(Key::f8);
            user.release(Key::leftSuper);
        },
        [](PhysicalKeyboard& user) { user.release(Key::f8); },
        {Key::leftShift, Key::rightShift, Key::leftControl, Key::leftAlt, Key::rightAlt, Key::rightSuper}};
    compare(stage, exact, modifiers, stage.options.samples);
    compare(stage, exact, {"any other key", nothing, nothing, {Key::letterB, Key::leftShift, Key::f8}, false},
            stage.options.samples);
    measureEdges(stage, stage.options.samples);
}

} // namespace velorin::tap

// Long stops of the program, as by a suspended machine or a full memory, and a server that is late.
#include "Stage.h"

#include "tests/platform/linux/x11/support/LateServer.h"

#include <algorithm>
#include <cmath>
#include <thread>

namespace velorin::tap {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 10s;
constexpr double limit = 2000; // milliseconds
constexpr double shortestStop = 0.1;

/// Spread evenly by their logarithm, in an order of chance.
std::vector<std::chrono::milliseconds> lengths(Stage& stage) {
    const int count = stage.options.longStops;
    std::vector<std::chrono::milliseconds> lengths;
    for (int i = 0; i < count; ++i) {
        const double share = count > 1 ? static_cast<double>(i) / (count - 1) : 0;
        const double seconds = shortestStop * std::pow(stage.options.longestStop / shortestStop, share);
        lengths.emplace_back(std::lround(seconds * 1000));
    }
    std::ranges::shuffle(lengths, stage.chance);
    return lengths;
}

int timeoutOf(const Deadline& deadline) { return std::max(deadline.pollTimeout(), 0); }

/// Milliseconds until a press of the hold key begins a hold, from the start on; the patience if none does.
double untilHoldWorks(Stage& stage, TapSubject& subject, std::chrono::steady_clock::time_point start) {
    const Deadline deadline(patience);
    while (!deadline.hasPassed()) {
        stage.user.press(Key::rightControl);
        const bool began = subject.lineWith("edge holdActivated", 100).has_value();
        const auto time = millisecondsSince(start);
        stage.user.release(Key::rightControl);
        if (began && subject.lineWith("edge holdDeactivated", timeoutOf(deadline)))
            return time;
    }
    return millisecondsSince(start);
}

/// What was said before.
void forgetLines(TapSubject& subject) {
    while (subject.line(20)) {
    }
}

struct Tally {
    double longestUntilWork = 0;
    double longestUntilEnd = 0;
    int holds = 0;
    int stuck = 0;
};

void stopFor(std::chrono::milliseconds length, int round, Stage& stage, TapSubject& subject, Tally& tally) {
    const bool isHeld = round % 3 == 0;
    const bool isTypedInto = round % 2 == 0; // what makes the guard end the tap's connection
    while (subject.line(20)) {               // what was said before
    }
    if (isHeld)
        stage.user.press(Key::rightControl);
    if (isHeld && !subject.lineWith("edge holdActivated"))
        Report::note("round " + std::to_string(round) + ": no hold began");
    subject.stop();
    std::this_thread::sleep_for(length / 2); // the stop itself
    if (isHeld)
        stage.user.release(Key::rightControl);
    if (isTypedInto) {
        stage.user.tap(Key::rightControl);
        stage.user.tap(Key::letterB);
    }
    stage.user.sync();
    std::this_thread::sleep_for(length - length / 2);
    const auto start = std::chrono::steady_clock::now();
    subject.goOn();
    if (isHeld) {
        ++tally.holds;
        const bool hasEnded = subject.lineWith("edge holdDeactivated").has_value();
        tally.longestUntilEnd = std::max(tally.longestUntilEnd, millisecondsSince(start));
        if (!hasEnded)
            Report::note("round " + std::to_string(round) + ": the hold does not end");
    }
    const double untilWork = untilHoldWorks(stage, subject, start);
    if (untilWork > limit)
        Report::note("round " + std::to_string(round) + ": stopped for " + std::to_string(length.count()) +
                     " ms, worked after " + milliseconds(untilWork));
    tally.longestUntilWork = std::max(tally.longestUntilWork, untilWork);
    const Deadline deadline(patience);
    while (stage.down().any() && !deadline.hasPassed())
        std::this_thread::sleep_for(1ms);
    tally.stuck += stage.down().any() ? 1 : 0;
}

/// Somebody tries the shortcut now and then, and types.
void tryInVain(Stage& stage, std::chrono::seconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
        stage.user.tap(Key::letterB);
        stage.user.tap(Key::rightControl);
        stage.user.tap(Key::letterK);
        stage.user.sync();
        std::this_thread::sleep_for(std::chrono::milliseconds(200 + stage.below(1500)));
    }
}

} // namespace

void measureLongStops(Stage& stage) {
    const auto window = stage.window();
    const auto subject = stage.start(ShortcutConfiguration::defaultConfiguration());
    Tally tally;
    int round = 0;
    for (const auto length : lengths(stage)) {
        stopFor(length, round++, stage, *subject, tally);
        (void)window->keys();
    }
    const auto what = "stopped for 0.1 to " + std::to_string(stage.options.longestStop) + " s, ";
    const auto of = " of " + std::to_string(round);
    stage.report.row(what + "until shortcuts work", "at most " + milliseconds(tally.longestUntilWork) + of,
                     "2 s", tally.longestUntilWork <= limit);
    stage.report.row(what + "until a hold ends",
                     "at most " + milliseconds(tally.longestUntilEnd) + " of " + std::to_string(tally.holds),
                     "2 s", tally.longestUntilEnd <= limit);
    stage.report.row(what + "keys stuck", std::to_string(tally.stuck) + of, "0", tally.stuck == 0);
}

void measureLateServer(Stage& stage) {
    const auto window = stage.window();
    const std::chrono::seconds time(stage.options.lateSeconds);
    LateServer late(stage.server, {.longest = 600ms, .seed = stage.options.seed});
    const auto subject = stage.start(ShortcutConfiguration::defaultConfiguration());
    tryInVain(stage, time);
    const auto start = std::chrono::steady_clock::now();
    late.recover();
    forgetLines(*subject);
    const double untilWork = untilHoldWorks(stage, *subject, start);
    const Deadline deadline(patience);
    while (stage.down().any() && !deadline.hasPassed())
        std::this_thread::sleep_for(1ms);
    const bool isAnyDown = stage.down().any();
    (void)window->keys();
    stage.report.row("a server that is 0 to 600 ms late for " + std::to_string(time.count()) +
                         " s, from its recovery until shortcuts work",
                     milliseconds(untilWork), "2 s", untilWork <= limit);
    stage.report.row("a late server, keys stuck after it", isAnyDown ? "1" : "0", "0", !isAnyDown);
}

} // namespace velorin::tap

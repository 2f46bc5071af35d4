#include "Stage.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <set>
#include <thread>

namespace velorin::tap {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 5s;
constexpr std::array keys{Key::leftShift,    Key::leftSuper,  Key::leftAlt,      Key::leftControl,
                          Key::rightControl, Key::scrollLock, Key::rightControl, Key::rightControl,
                          Key::letterB,      Key::letterK};

/// Somebody who presses keys by chance, and knows which are down.
class Hands final {
public:
    explicit Hands(Stage& stage) : stage_(stage) {}

    void press(int key) {
        stage_.user.press(key);
        down_.insert(key);
    }
    void goOnFor(std::chrono::microseconds time) {
        const auto end = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < end) {
            const int key = keys[static_cast<std::size_t>(stage_.below(keys.size()))];
            if (down_.erase(key) != 0)
                stage_.user.release(key);
            else
                press(key);
            std::this_thread::sleep_for(std::chrono::microseconds(stage_.below(4000)));
        }
    }
    void letGo() {
        for (const auto key : std::exchange(down_, {}))
            stage_.user.release(key);
        stage_.user.sync();
    }
    /// A key that the server holds for down and nobody presses; 0 for none.
    [[nodiscard]] unsigned stuck() {
        const auto down = stage_.down();
        for (unsigned key = 1; key < down.size(); ++key)
            if (down[key] && !down_.contains(static_cast<int>(key)))
                return key;
        return 0;
    }

private:
    Stage& stage_;
    std::set<int> down_;
};

/// Milliseconds until a tap of a key reaches the window; the patience if it does not.
double untilKeyArrives(Stage& stage, TestWindow& window) {
    const auto start = std::chrono::steady_clock::now();
    stage.user.tap(Key::zero);
    (void)window.keysThrough(Key::zero);
    return millisecondsSince(start);
}

ShortcutConfiguration withChord() {
    auto configuration = ShortcutConfiguration::defaultConfiguration();
    configuration.copyAgain = keyBinding(Code::scrollLock, ShortcutModifiers::command);
    return configuration;
}

/// The hold key no longer reaches the window: the tap has it again, and says so.
bool comesBack(Stage& stage, TapSubject& subject, TestWindow& window) {
    const Deadline deadline(patience);
    do {
        (void)window.keys();
        stage.user.tap(Key::rightControl);
        stage.user.tap(Key::zero);
        const auto seen = window.keysThrough(Key::zero);
        if (std::ranges::none_of(seen, [](const auto& key) { return key.key == Key::rightControl; }))
            return subject.lineWith("edge holdActivated") && subject.lineWith("edge holdDeactivated");
    } while (!deadline.hasPassed());
    return false;
}

} // namespace

void measureKills(Stage& stage) {
    const auto window = stage.window();
    double longest = 0;
    double longestStuck = 0;
    int stuck = 0;
    for (int round = 0; round < stage.options.kills; ++round) {
        const auto subject = stage.start(withChord());
        Hands hands(stage);
        const auto guard = subject->guard();
        hands.goOnFor(std::chrono::microseconds(stage.below(30'000)));
        if (round % 2 == 1) {
            for (int i = 0; i < 20; ++i)
                subject->command("paste");
            hands.goOnFor(std::chrono::microseconds(stage.below(10'000)));
        }
        subject->kill();
        const auto start = std::chrono::steady_clock::now();
        longest = std::max(longest, untilKeyArrives(stage, *window));
        unsigned key = hands.stuck();
        while (key != 0 && millisecondsSince(start) < 1000)
            key = hands.stuck();
        if (key != 0) {
            ++stuck;
            Report::note("round " + std::to_string(round) + ": key " + std::to_string(key) + " is stuck");
        }
        longestStuck = std::max(longestStuck, millisecondsSince(start));
        hands.letGo();
        until("the guard to end", patience, [&] { return guard == 0 || kill(guard, 0) != 0; });
        if (key == 0 && hands.stuck() != 0) {
            ++stuck;
            Report::note("round " + std::to_string(round) + ": a key is stuck after all were let go");
        }
        (void)window->keys();
    }
    const auto count = std::to_string(stage.options.kills);
    stage.report.row("killed, until a key reaches the window",
                     "at most " + milliseconds(longest) + " in " + count, "at once (250 ms)", longest < 250);
    stage.report.row("killed, keys down that nobody holds",
                     std::to_string(stuck) + " in " + count + ", gone after at most " +
                         milliseconds(longestStuck),
                     "0", stuck == 0);
}

void measureStops(Stage& stage) {
    const auto window = stage.window();
    const auto subject = stage.start(withChord());
    double longest = 0;
    int notBack = 0;
    int stuck = 0;
    for (int round = 0; round < stage.options.stops; ++round) {
        Hands hands(stage);
        hands.goOnFor(std::chrono::microseconds(stage.below(40'000)));
        if (round % 2 == 1) {
            hands.letGo();
            hands.press(Key::rightControl); // just being swallowed, or swallowed
            std::this_thread::sleep_for(std::chrono::microseconds(stage.below(1500)));
        }
        subject->stop();
        hands.goOnFor(10ms);
        stage.user.tap(Key::rightControl);
        longest = std::max(longest, untilKeyArrives(stage, *window));
        hands.letGo();
        subject->goOn();
        while (subject->line(20)) { // what was said before
        }
        if (!comesBack(stage, *subject, *window)) {
            ++notBack;
            Report::note("round " + std::to_string(round) + ": the shortcuts do not come back");
        }
        if (hands.stuck() != 0) {
            ++stuck;
            Report::note("round " + std::to_string(round) + ": key " + std::to_string(hands.stuck()) +
                         " is stuck");
        }
    }
    const auto count = std::to_string(stage.options.stops);
    stage.report.row("stopped, until keys work", "at most " + milliseconds(longest) + " in " + count, "1 s",
                     longest <= 1000);
    stage.report.row("stopped and let go on, shortcuts that stay dead",
                     std::to_string(notBack) + " in " + count, "0", notBack == 0);
    stage.report.row("stopped and let go on, keys stuck", std::to_string(stuck) + " in " + count, "0",
                     stuck == 0);
}

void measureIdle(Stage& stage) {
    const auto subject = stage.start(ShortcutConfiguration::defaultConfiguration());
    const bool works = Stage::holdWorks(stage.user, *subject);
    std::this_thread::sleep_for(1s); // the guard's last question about that
    const auto tap = voluntarySwitchesOf(subject->id());
    const auto guard = voluntarySwitchesOf(subject->guard());
    std::this_thread::sleep_for(std::chrono::seconds(stage.options.idleSeconds)); // the measurement
    const auto ofTap = voluntarySwitchesOf(subject->id()) - tap;
    const auto ofGuard = voluntarySwitchesOf(subject->guard()) - guard;
    stage.report.row("voluntary context switches in " + std::to_string(stage.options.idleSeconds) + " s",
                     "program " + std::to_string(ofTap) + ", guard " + std::to_string(ofGuard), "0",
                     works && ofTap == 0 && ofGuard == 0);
}

} // namespace velorin::tap

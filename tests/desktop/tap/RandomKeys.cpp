#include "DeliveredKeys.h"
#include "Expectation.h"
#include "Stage.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <thread>

namespace velorin::tap {

namespace {

using namespace std::chrono_literals;

constexpr long eventsInARun = 500;
constexpr long eventsWithOneProgram = 5'000;
constexpr std::size_t keysAtOnce = 6;

constexpr std::array modifiers{Key::leftShift, Key::rightShift, Key::leftControl, Key::rightControl,
                               Key::leftAlt,   Key::rightAlt,   Key::leftSuper,   Key::rightSuper};
/// Window managers have no use for them, and editors neither.
constexpr std::array bound{Key::scrollLock, Key::pause};
constexpr std::array letters{Key::letterB, Key::letterK, Key::letterM, Key::letterJ};

std::vector<ShortcutConfiguration> configurations() {
    using M = ShortcutModifiers;
    constexpr quint16 scrollLock = 107;
    constexpr quint16 pause = 113;
    const auto chord = ShortcutModifiers{M::control.rawValue | M::shift.rawValue};
    return {ShortcutConfiguration::defaultConfiguration(),
            {keyBinding(pause, {}), keyBinding(pause, M::command), keyBinding(scrollLock, chord), {}},
            {modifierBinding(61, {}, KeyCodeSet{61}), keyBinding(scrollLock, M::command, KeyCodeSet{55}),
             keyBinding(pause, {}, KeyCodeSet{}), M::shift},
            {modifierBinding(60, M::control),
             modifierBinding(63, M::option, KeyCodeSet{58, 63}),
             keyBinding(scrollLock, M::option),
             {}}};
}

const std::vector<std::vector<std::string>> targets{
    {"xterm", "-e", "sh", "-c", "stty raw -echo; exec cat > /dev/null"},
    {"mousepad", "--disable-server"},
    {"featherpad", "--standalone"}};

/// The road of the keys of one run to the program in front, and what became of them.
class Run final {
public:
    Run(Stage& stage, TapSubject& subject, Expectation& expectation, DeliveredKeys& delivered)
        : stage_(stage), subject_(subject), expectation_(expectation), delivered_(delivered) {}

    /// Whether all was as it must be; says what was not.
    [[nodiscard]] bool type(long events) {
        auto next = std::chrono::steady_clock::now();
        for (long i = 0; i < events; ++i) {
            std::this_thread::sleep_until(next);
            next += std::chrono::microseconds(stage_.below(2'000'000 / stage_.options.rate));
            change(pick());
        }
        for (const auto key : std::set(expectation_.down()))
            change(key);
        change(Key::zero);
        change(Key::zero);
        const bool isRight = compareKeys();
        return compareEdges() && isRight && compareServer();
    }

private:
    int pick() {
        const auto& down = expectation_.down();
        if (down.size() >= keysAtOnce || (!down.empty() && stage_.below(4) == 0))
            return *std::next(down.begin(), stage_.below(static_cast<int>(down.size())));
        const int kind = stage_.below(20);
        if (kind < 9)
            return modifiers[static_cast<std::size_t>(stage_.below(modifiers.size()))];
        if (kind < 13)
            return bound[static_cast<std::size_t>(stage_.below(bound.size()))];
        return letters[static_cast<std::size_t>(stage_.below(letters.size()))];
    }

    void change(int key) {
        const bool isPress = !expectation_.down().contains(key);
        log_.push_back({isPress, key});
        if (isPress) {
            stage_.user.press(key);
            expectation_.press(key);
        } else {
            stage_.user.release(key);
            expectation_.release(key);
        }
    }

    bool compareKeys() {
        auto got = delivered_.through(Key::zero);
        std::erase_if(got, [](const TestWindow::Key& key) { // that which keeps Super company
            return key.key != Key::zero && std::ranges::find(modifiers, key.key) == modifiers.end() &&
                   std::ranges::find(bound, key.key) == bound.end() &&
                   std::ranges::find(letters, key.key) == letters.end();
        });
        const auto expected = expectation_.takeKeys();
        if (got == expected)
            return true;
        const auto [here, there] = std::ranges::mismatch(expected, got);
        Report::note("expected … " + around(expected, here) + "; got … " + around(got, there));
        Report::note("pressed " + toString(log_));
        return false;
    }

    static std::string around(const std::vector<TestWindow::Key>& keys,
                              std::vector<TestWindow::Key>::const_iterator place) {
        const auto from = place - keys.begin() > 8 ? place - 8 : keys.begin();
        const auto to = keys.end() - place > 8 ? place + 8 : keys.end();
        return toString({from, place}) + " | " + toString({place, to});
    }

    bool compareEdges() {
        std::string expected;
        std::string got;
        for (const auto& name : expectation_.takeEdges()) {
            expected += name + ' ';
            const auto line = subject_.lineWith("edge");
            got += line ? line->substr(5, line->rfind(' ') - 4) : "";
        }
        while (const auto more = subject_.line(0))
            got += *more + ' ';
        if (expected == got)
            return true;
        const auto place =
            static_cast<std::size_t>(std::ranges::mismatch(expected, got).in1 - expected.begin());
        const auto from = place > 100 ? place - 100 : 0;
        Report::note("expected the edges … " + expected.substr(from, 200) + "; got … " +
                     got.substr(from, 200));
        Report::note("pressed " + toString(log_));
        return false;
    }

    bool compareServer() {
        const auto down = stage_.down();
        for (unsigned key = 0; key < down.size(); ++key)
            if (down[key])
                Report::note("key " + std::to_string(key) + " is still down");
        return down.none();
    }

    Stage& stage_;
    TapSubject& subject_;
    Expectation& expectation_;
    DeliveredKeys& delivered_;
    std::vector<TestWindow::Key> log_;
};

struct Outcome {
    long events = 0;
    long swallowed = 0;
    int wrongRuns = 0;
};

void typeInto(Stage& stage, const std::vector<std::string>& target,
              const ShortcutConfiguration& configuration, long events, Outcome& outcome) {
    auto [program, window] = stage.startProgram(target);
    DeliveredKeys delivered(window);
    const auto map = KeyboardMap::read(stage.user.connection(), Deadline(10s));
    auto subject = stage.start(configuration);
    // One for the life of the subject: what the matcher has got wrong of twin modifiers it keeps.
    auto expectation = std::make_unique<Expectation>(configuration, map.value());
    for (long done = 0; done < events; done += eventsInARun) {
        const auto count = std::min(eventsInARun, events - done);
        const auto swallowedBefore = expectation->swallowed();
        const bool isRight = Run(stage, *subject, *expectation, delivered).type(count);
        outcome.events += count;
        outcome.swallowed += expectation->swallowed() - swallowedBefore;
        if (isRight)
            continue;
        ++outcome.wrongRuns;
        Report::note("in " + target.front() + " with " + configuration.summary().toStdString() +
                     (stage.hasKeyboard(window) ? "" : ", which no longer has the keyboard"));
        subject.reset();
        subject = stage.start(configuration); // from a clean slate
        expectation = std::make_unique<Expectation>(configuration, map.value());
        (void)delivered.through(Key::zero);
    }
    subject->command("quit");
}

} // namespace

void measureRandomKeys(Stage& stage) {
    // Keys that come by the second version of the input extension cannot be recorded.
    setenv("GDK_CORE_DEVICE_EVENTS", "1", 1);
    std::vector<Outcome> outcomes(targets.size());
    const auto all = configurations();
    long done = 0;
    for (std::size_t part = 0; done < stage.options.presses; ++part) {
        const auto events = std::min(eventsWithOneProgram, stage.options.presses - done);
        const auto target = part % targets.size();
        typeInto(stage, targets[target], all[part / targets.size() % all.size()], events, outcomes[target]);
        done += events;
    }
    for (std::size_t target = 0; target < targets.size(); ++target) {
        const auto& outcome = outcomes[target];
        if (outcome.events > 0)
            stage.report.row("random keys in " + targets[target].front(),
                             std::to_string(outcome.events) + " presses and releases, " +
                                 std::to_string(outcome.swallowed) + " swallowed, runs of " +
                                 std::to_string(eventsInARun) +
                                 " with a difference: " + std::to_string(outcome.wrongRuns),
                             "0", outcome.wrongRuns == 0);
    }
}

} // namespace velorin::tap

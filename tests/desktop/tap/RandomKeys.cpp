#include "KeyRun.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace velorin::tap {

namespace {

using namespace std::chrono_literals;

constexpr long eventsInARun = 500;
constexpr long eventsWithOneProgram = 5'000;
constexpr std::size_t keysAtOnce = 6;

const std::vector<std::vector<std::string>> targets{
    {"xterm", "-e", "sh", "-c", "stty raw -echo; exec cat > /dev/null"},
    {"mousepad", "--disable-server"},
    {"featherpad", "--standalone"}};

int pick(Stage& stage) {
    const int kind = stage.below(20);
    if (kind < 9)
        return modifiers[static_cast<std::size_t>(stage.below(modifiers.size()))];
    if (kind < 13)
        return bound[static_cast<std::size_t>(stage.below(bound.size()))];
    return letters[static_cast<std::size_t>(stage.below(letters.size()))];
}

/// What a user may do who ends with all keys up.
std::vector<TestWindow::Key> randomKeys(Stage& stage, long events) {
    std::set<int> down;
    std::vector<TestWindow::Key> keys;
    const auto change = [&](int key) {
        const bool isPress = down.insert(key).second;
        if (!isPress)
            down.erase(key);
        keys.push_back({isPress, key});
    };
    for (long i = 0; i < events; ++i) {
        const auto count = static_cast<int>(down.size());
        const bool isOld = down.size() >= keysAtOnce || (count > 0 && stage.below(4) == 0);
        change(isOld ? *std::next(down.begin(), stage.below(count)) : pick(stage));
    }
    for (const auto key : std::set(down))
        change(key);
    return keys;
}

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
    const auto swallowedAtFirst = outcome.swallowed;
    // One for the life of the subject: what the matcher has got wrong of twin modifiers it keeps.
    auto expectation = std::make_unique<Expectation>(configuration, map.value());
    for (long done = 0; done < events; done += eventsInARun) {
        const auto count = std::min(eventsInARun, events - done);
        const auto swallowedBefore = expectation->swallowed();
        const bool isRight = KeyRun(stage, *subject, *expectation, delivered).type(randomKeys(stage, count));
        outcome.events += count;
        outcome.swallowed += expectation->swallowed() - swallowedBefore;
        if (isRight)
            continue;
        ++outcome.wrongRuns;
        Report::note("in " + target.front() + " with " + configuration.summary().toStdString() +
                     (stage.hasKeyboard(window) ? "" : ", which no longer has the keyboard"));
        subject.reset();
        stage.user.tap(Key::f7);
        (void)delivered.through(Key::f7);
        subject = stage.start(configuration); // from a clean slate
        expectation = std::make_unique<Expectation>(configuration, map.value());
    }
    subject->command("quit");
    if (events >= eventsInARun && outcome.swallowed == swallowedAtFirst)
        throw std::runtime_error("the keys that are pressed are bound to nothing");
}

} // namespace

std::vector<ShortcutConfiguration> configurations() {
    using M = ShortcutModifiers;
    using namespace Code;
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

void measureRandomKeys(Stage& stage) {
    // Keys that come by the second version of the input extension cannot be recorded.
    setenv("GDK_CORE_DEVICE_EVENTS", "1", 1);
    std::vector<Outcome> outcomes(targets.size());
    const auto all = configurations();
    long done = 0;
    for (std::size_t part = 0; done < stage.options.presses; ++part) {
        const auto events = std::min(eventsWithOneProgram, stage.options.presses - done);
        const auto target = part % targets.size();
        const auto only = stage.options.configuration;
        const auto which = only < 0 ? part / targets.size() % all.size() : static_cast<std::size_t>(only);
        typeInto(stage, targets[target], all.at(which), events, outcomes[target]);
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

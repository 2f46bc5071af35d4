#include "KeyRun.h"

#include <algorithm>
#include <sstream>

namespace velorin::tap {

namespace {

using Keys = std::vector<TestWindow::Key>;

/// As the proof prints them: "37+ 55+ 55- 37-".
Keys keysIn(const std::string& text) {
    std::istringstream words(text);
    Keys keys;
    std::set<int> down;
    for (std::string word; words >> word;) {
        const int key = std::stoi(word);
        const bool isPress = word.ends_with('+');
        if (key == Key::zero || (isPress ? !down.insert(key).second : down.erase(key) == 0))
            continue;
        keys.push_back({isPress, key});
    }
    for (const auto key : down)
        keys.push_back({false, key});
    return keys;
}

/// Without `count` presses from that one on, and without their releases.
Keys without(const Keys& keys, std::size_t first, std::size_t count) {
    Keys rest;
    std::set<int> dropped;
    std::size_t presses = 0;
    for (const auto& key : keys) {
        const bool isDropped =
            key.isPress ? presses >= first && presses < first + count : dropped.contains(key.key);
        presses += key.isPress ? 1 : 0;
        if (!isDropped)
            rest.push_back(key);
        else if (key.isPress)
            dropped.insert(key.key);
        else
            dropped.erase(key.key);
    }
    return rest;
}

std::size_t pressesOf(const Keys& keys) {
    return static_cast<std::size_t>(std::ranges::count_if(keys, &TestWindow::Key::isPress));
}

} // namespace

void replayKeys(Stage& stage) {
    const auto configuration =
        configurations().at(static_cast<std::size_t>(std::max(stage.options.configuration, 0)));
    const auto window = stage.window();
    DeliveredKeys delivered(window->id());
    const auto map = KeyboardMap::read(stage.user.connection(), Deadline(std::chrono::seconds(10)));
    long swallowed = 0;
    const auto isRight = [&](const Keys& keys) {
        stage.user.tap(Key::f7);
        (void)delivered.through(Key::f7); // what an earlier one left behind
        const auto subject = stage.start(configuration);
        Expectation expectation(configuration, map.value());
        const bool isAsExpected = KeyRun(stage, *subject, expectation, delivered).type(keys);
        swallowed = expectation.swallowed();
        return isAsExpected;
    };
    auto keys = keysIn(stage.options.replay);
    const bool wasRight = isRight(keys);
    // While it differs, ever fewer keys that still do.
    for (auto count = wasRight ? 0 : pressesOf(keys) / 2; count > 0; count /= 2)
        for (std::size_t first = 0; first < pressesOf(keys);) {
            const auto fewer = without(keys, first, count);
            if (isRight(fewer))
                first += count;
            else
                keys = fewer;
        }
    stage.report.row("the keys given",
                     wasRight ? "as they must be, " + std::to_string(swallowed) + " swallowed"
                              : "still differs: " + toString(keys),
                     "no difference", wasRight);
}

} // namespace velorin::tap

#include "KeyRun.h"

#include <algorithm>
#include <thread>

namespace velorin::tap {

namespace {

std::string around(const std::vector<TestWindow::Key>& keys,
                   std::vector<TestWindow::Key>::const_iterator place) {
    const auto from = place - keys.begin() > 8 ? place - 8 : keys.begin();
    const auto to = keys.end() - place > 8 ? place + 8 : keys.end();
    return toString({from, place}) + " | " + toString({place, to});
}

} // namespace

bool KeyRun::type(const std::vector<TestWindow::Key>& keys) {
    auto next = std::chrono::steady_clock::now();
    for (const auto& key : keys) {
        std::this_thread::sleep_until(next);
        next += std::chrono::microseconds(stage_.below(2'000'000 / stage_.options.rate));
        change(key);
    }
    change({true, Key::zero});
    change({false, Key::zero});
    return compareKeys(keys) && compareEdges(keys) && compareServer();
}

void KeyRun::change(const TestWindow::Key& key) {
    if (key.isPress) {
        stage_.user.press(key.key);
        expectation_.press(key.key);
    } else {
        stage_.user.release(key.key);
        expectation_.release(key.key);
    }
}

bool KeyRun::compareKeys(const std::vector<TestWindow::Key>& pressed) {
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
    Report::note("pressed " + toString(pressed));
    return false;
}

bool KeyRun::compareEdges(const std::vector<TestWindow::Key>& pressed) {
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
    const auto place = static_cast<std::size_t>(std::ranges::mismatch(expected, got).in1 - expected.begin());
    const auto from = place > 100 ? place - 100 : 0;
    Report::note("expected the edges … " + expected.substr(from, 200) + "; got … " + got.substr(from, 200));
    Report::note("pressed " + toString(pressed));
    return false;
}

bool KeyRun::compareServer() {
    const auto down = stage_.down();
    for (unsigned key = 0; key < down.size(); ++key)
        if (down[key])
            Report::note("key " + std::to_string(key) + " is still down");
    return down.none();
}

} // namespace velorin::tap

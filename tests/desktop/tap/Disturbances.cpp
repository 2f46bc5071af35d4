#include "Stage.h"

#include <array>
#include <thread>

namespace velorin::tap {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 5s;

/// What went wrong, by kind.
struct Tally {
    int ofHolds = 0;
    int ofKeys = 0;
    int ofShortcuts = 0;

    [[nodiscard]] bool isGood() const { return ofHolds == 0 && ofKeys == 0 && ofShortcuts == 0; }
};

void tell(Stage& stage, const std::string& what, const Tally& tally) {
    stage.report.row(what,
                     "holds wrong: " + std::to_string(tally.ofHolds) +
                         ", keys stuck: " + std::to_string(tally.ofKeys) + ", shortcuts dead: " +
                         std::to_string(tally.ofShortcuts) + " in " + std::to_string(stage.options.rounds),
                     "0", tally.isGood());
}

void run(const std::vector<std::string>& command) { (void)ChildProcess(command).wait(); }

/// A hold within which something happens; it must end with its key, and all be as before.
void holdDuring(
    Stage& stage, TapSubject& subject, Tally& tally, const std::function<void()>& happens,
    const std::function<void()>& ends = [] {}) {
    stage.user.press(Key::rightControl);
    const bool began = subject.lineWith("edge holdActivated").has_value();
    happens();
    stage.user.release(Key::rightControl);
    tally.ofHolds += began && subject.lineWith("edge holdDeactivated") ? 0 : 1;
    stage.user.sync();
    ends();
    tally.ofKeys += stage.down().none() ? 0 : 1;
    tally.ofShortcuts += Stage::holdWorks(stage.user, subject) ? 0 : 1;
}

/// Somebody has the keyboard, as an open menu has and a screen locker.
void measureGrabs(Stage& stage, TestWindow& window) {
    const auto subject = stage.start(ShortcutConfiguration::defaultConfiguration());
    auto* c = window.connection().get();
    const auto grab = [&] {
        const auto answer = window.connection().reply<xcb_grab_keyboard_reply_t>(
            xcb_grab_keyboard(c, 0, window.id(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
            Deadline(patience));
        return answer && answer->status == XCB_GRAB_STATUS_SUCCESS;
    };
    const auto ungrab = [&] {
        xcb_ungrab_keyboard(c, 0);
        window.connection().sync(Deadline(patience));
    };
    Tally locked;
    Tally during;
    for (int round = 0; round < stage.options.rounds; ++round) {
        until("the keyboard", patience, grab);
        stage.user.tap(Key::rightControl);
        stage.user.press(Key::leftSuper);
        stage.user.tap(Key::rightControl);
        stage.user.release(Key::leftSuper);
        stage.user.sync();
        ungrab();
        std::this_thread::sleep_for(5ms); // nobody unlocks a screen within the same millisecond
        // The next hold is the first thing that is said: nothing began meanwhile.
        stage.user.press(Key::rightControl);
        const auto first = subject->lineWith("edge");
        stage.user.release(Key::rightControl);
        const auto second = subject->lineWith("edge");
        const bool isRight = first && first->starts_with("edge holdActivated") && second &&
                             second->starts_with("edge holdDeactivated") && !subject->line(0);
        locked.ofHolds += isRight ? 0 : 1;
        locked.ofKeys += stage.down().none() ? 0 : 1;
        holdDuring(
            stage, *subject, during, [&] { until("the keyboard", patience, grab); }, ungrab);
    }
    tell(stage, "the shortcut's keys at a locked screen", locked);
    tell(stage, "keyboard grabbed by somebody during a hold", during);
}

void measureLayouts(Stage& stage) {
    const auto subject = stage.start(ShortcutConfiguration::defaultConfiguration());
    constexpr std::array layouts{"us,ru", "de", "fr", "gr,us", "us"};
    Tally tally;
    for (int round = 0; round < stage.options.rounds; ++round)
        holdDuring(stage, *subject, tally, [&] {
            run({"setxkbmap", "-layout", layouts[static_cast<std::size_t>(round) % layouts.size()]});
        });
    run({"setxkbmap", "-layout", "us"});
    tell(stage, "layout switched during a hold", tally);
}

void measureKeyboards(Stage& stage) {
    const auto subject = stage.start(ShortcutConfiguration::defaultConfiguration());
    Tally tally;
    for (int round = 0; round < stage.options.rounds; ++round) {
        holdDuring(stage, *subject, tally, [] { run({"xinput", "create-master", "Second"}); });
        holdDuring(stage, *subject, tally, [] { run({"xinput", "remove-master", "Second keyboard"}); });
    }
    tell(stage, "keyboard added and removed during a hold", tally);
}

void measureMaps(Stage& stage, TestWindow& window) {
    const auto subject = stage.start(ShortcutConfiguration::defaultConfiguration());
    Tally tally;
    for (int round = 0; round < stage.options.rounds; ++round) {
        const auto storm = [&] {
            std::thread changes([] {
                for (int i = 0; i < 10; ++i)
                    run({"xmodmap", "-e", "keycode 248 = F2" + std::to_string(i % 5)});
            });
            for (int i = 0; i < 40; ++i) {
                stage.user.tap(Key::letterB);
                std::this_thread::sleep_for(1ms);
            }
            changes.join();
        };
        holdDuring(stage, *subject, tally, storm);
        stage.user.tap(Key::zero);
        int letters = 0;
        for (const auto& key : window.keysThrough(Key::zero))
            letters += key.key == Key::letterB && key.isPress && key.modifiers == 0 ? 1 : 0;
        tally.ofKeys += letters == 40 ? 0 : 1;
    }
    tell(stage, "storms of xmodmap during a hold", tally);
}

} // namespace

void measureDisturbances(Stage& stage) {
    // The server looks for grabs on the way to the window that has the keyboard. Where none has it, as between
    // two windows, no grab of anybody's fires.
    const auto window = stage.window();
    measureGrabs(stage, *window);
    measureLayouts(stage);
    measureKeyboards(stage);
    measureMaps(stage, *window);
}

} // namespace velorin::tap

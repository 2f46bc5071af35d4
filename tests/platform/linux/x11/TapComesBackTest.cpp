// The tap when the server is late or gone for a while, and when others have its keys.
#include "platform/linux/x11/TapGrabs.h"
#include "tests/platform/linux/x11/support/LateServer.h"
#include "tests/platform/linux/x11/support/TapFixture.h"
#include "tests/platform/linux/x11/support/TapSubject.h"
#include "tests/support/LogCapture.h"

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

/// Another program that has a key.
class Taker final {
public:
    Taker() : connections_(std::move(*TapConnections::open(5s))), grabs_(*connections_, state_, log_) {}
    void take(int key, std::set<std::uint32_t> states) {
        grabs_.apply({{static_cast<xcb_keycode_t>(key), std::move(states)}}, TapKeys("rightControl"));
    }
    void giveUp() { grabs_.apply({}, TapKeys("rightControl")); }

private:
    SharedKeyState state_;
    LogThread log_;
    std::unique_ptr<TapConnections> connections_;
    TapGrabs grabs_;
};

class TapComesBackTest : public testing::Test {
protected:
    TapComesBackTest() {
        window.focus();
        handled.answer = [](const KeyEvent&) { return TapAnswer::swallow; };
    }

    TapListener listener() {
        return {.onLost = [this] { isLost = true; },
                .onSuspended =
                    [this](TapTrouble reason) {
                        trouble = reason;
                        isWorking = false;
                    },
                .onResumed = [this] { isWorking = true; }};
    }

    static bool awaits(const std::function<bool()>& isThere, std::chrono::milliseconds patience = 10s) {
        const Deadline deadline(patience);
        while (!isThere()) {
            if (deadline.hasPassed())
                return false;
            std::this_thread::sleep_for(1ms);
        }
        return true;
    }

    /// Presses the key until the handler is told of it, which it must be within two seconds.
    void expectThatItWorks(int key, const std::string& told) {
        const Deadline deadline(2s);
        handled.clear();
        do {
            user.tap(key);
            user.sync();
            std::this_thread::sleep_for(10ms);
        } while (handled.text().find(told) == std::string::npos && !deadline.hasPassed());
        EXPECT_THAT(handled.text(), testing::HasSubstr(told));
        EXPECT_TRUE(awaits([&] { return down().none(); }));
    }
    KeySet down() { return keysDown(user.connection(), Deadline(5s)).value(); }

    PrivateServer server;
    PhysicalKeyboard user;
    TestWindow window;
    SharedKeyState state;
    Handled handled;
    std::atomic<bool> isLost = false;
    std::atomic<bool> isWorking = false;
    std::atomic<TapTrouble> trouble = TapTrouble::serverIsLate;
    X11EventTap tap{state, {}};
};

class LateServerTest : public TapComesBackTest, public testing::WithParamInterface<unsigned> {};

TEST_P(LateServerTest, WorksTwoSecondsAfterAServerThatWasLateFromTheBeginning) {
    LateServer late(server, {.longest = 600ms, .seed = GetParam()});
    tap.setTappedKeys({fnAnyhow(), {96, {0}}});
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(tap.start(handled.handler(), listener()));
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s) << "nobody waits for the server";
    std::this_thread::sleep_for(
        std::chrono::milliseconds(200 + GetParam() * 700)); // in whatever it does by then
    late.recover();
    expectThatItWorks(rightControl, "f63/800000 f63/0");
    expectThatItWorks(f5, "d96 u96");
    EXPECT_TRUE(awaits([&] { return isWorking.load(); }));
    EXPECT_FALSE(isLost);
    tap.stop();
}

INSTANTIATE_TEST_SUITE_P(Seeds, LateServerTest, testing::Range(1U, 6U));

TEST_F(TapComesBackTest, EndsAHoldAndWorksAgainWhenItsConnectionWasEndedAndTheServerIsLate) {
    LateServer late(server, {.longest = 600ms, .seed = 3});
    late.recover();
    tap.setTappedKeys({fnAnyhow()});
    ASSERT_TRUE(tap.start(handled.handler(), listener()));
    EXPECT_TRUE(awaits([&] { return isWorking.load(); }));
    user.press(rightControl);
    EXPECT_EQ(handled.text(1), "f63/800000");
    late.relapse();
    xcb_kill_client(user.connection().get(), state->tapResource);
    user.sync();
    EXPECT_TRUE(awaits([&] { return !isWorking; }));
    user.release(rightControl);
    user.sync();
    EXPECT_EQ(handled.text(2), "f63/800000 f63/0") << "it is heard until there is somebody else to hear";
    late.recover();
    expectThatItWorks(rightControl, "f63/800000 f63/0");
    EXPECT_TRUE(awaits([&] { return isWorking.load(); }));
    EXPECT_FALSE(isLost);
    tap.stop();
}

TEST_F(TapComesBackTest, MayBeStoppedWhileTheServerDoesNotAnswerAtAll) {
    const LateServer stuck(server, {.isStuck = true});
    ASSERT_TRUE(tap.start(handled.handler(), listener()));
    const auto start = std::chrono::steady_clock::now();
    tap.stop();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    EXPECT_FALSE(isWorking);
}

TEST_F(TapComesBackTest, WorksAgainAfterAServerThatWasStuck) {
    LateServer stuck(server, {.isStuck = true});
    tap.setTappedKeys({fnAnyhow()});
    ASSERT_TRUE(tap.start(handled.handler(), listener()));
    EXPECT_TRUE(awaits([&] { return stuck.connections() > 0; }));
    stuck.recover();
    expectThatItWorks(rightControl, "f63/800000 f63/0");
    tap.stop();
}

TEST_F(TapComesBackTest, AsksAgainForAKeyThatAnotherProgramHadAtTheStart) {
    Taker predecessor;
    predecessor.take(f5, {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2});
    tap.setTappedKeys({{96, {0}}});
    ASSERT_TRUE(tap.start(handled.handler(), listener()));
    EXPECT_TRUE(awaits([&] { return !isWorking && trouble == TapTrouble::keysAreTaken; }));
    predecessor.giveUp();
    EXPECT_TRUE(awaits([&] { return isWorking.load(); }, 2s));
    expectThatItWorks(f5, "d96 u96");
    tap.stop();
}

TEST_F(TapComesBackTest, AsksAgainLongAfterwardsWhenAnotherWindowComesToTheFrontOrAProgramLeaves) {
    auto holder = std::make_unique<Taker>();
    holder->take(f5, {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2});
    tap.setTappedKeys({{96, {0}}});
    ASSERT_TRUE(tap.start(handled.handler(), listener()));
    const auto isAsleep = [&] {
        const auto before = voluntarySwitchesOf(getpid(), "velorin-tap");
        std::this_thread::sleep_for(1200ms); // more than the longest pause
        return voluntarySwitchesOf(getpid(), "velorin-tap") == before;
    };
    EXPECT_TRUE(awaits(isAsleep, 20s)) << "in the end it is given up";
    holder->giveUp();
    auto& other = window.connection();
    xcb_change_property(other.get(), XCB_PROP_MODE_REPLACE, other.root(), other.atom("_NET_ACTIVE_WINDOW"),
                        XCB_ATOM_WINDOW, 32, 0, nullptr);
    other.sync(Deadline(5s));
    EXPECT_TRUE(awaits([&] { return isWorking.load(); }, 2s));
    tap.stop();

    holder->take(f5, {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2});
    auto leaving = std::make_unique<TestWindow>();
    ASSERT_TRUE(tap.start(handled.handler(), listener()));
    EXPECT_TRUE(awaits(isAsleep, 20s));
    holder.reset();
    leaving.reset();
    EXPECT_TRUE(awaits([&] { return isWorking.load(); }, 2s));
    tap.stop();
}

TEST_F(TapComesBackTest, TakesNoNoticeOfCombinationsOfAKeyThatWorksInOthers) {
    Taker other;
    other.take(f5, {XCB_MOD_MASK_4});
    const LogCapture log;
    tap.setTappedKeys({{96, {0, command}}});
    ASSERT_TRUE(tap.start(handled.handler(), listener()));
    EXPECT_TRUE(awaits([&] { return isWorking.load(); }));
    std::this_thread::sleep_for(500ms); // in which it asks again
    tap.stop();
    EXPECT_EQ(log.lines(u"tap"_s).filter(u"grab refused"_s).size(), 1) << "and is told of once";
}

} // namespace
} // namespace velorin

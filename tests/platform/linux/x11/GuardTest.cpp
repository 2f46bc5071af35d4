#include "tests/platform/linux/x11/support/PhysicalKeyboard.h"
#include "tests/platform/linux/x11/support/PrivateServer.h"
#include "tests/platform/linux/x11/support/TapSubject.h"
#include "tests/platform/linux/x11/support/TestWindow.h"

#include "platform/linux/x11/KeyboardMap.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <thread>
#include <unistd.h>

using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr int rightControl = 105;
constexpr int leftShift = 50;
constexpr int letterA = 38;
constexpr int letterB = 56;

class GuardTest : public testing::Test {
protected:
    GuardTest() { window.focus(); }

    /// The hold key works: a press of it gives the edge, and its release.
    void expectThatHoldWorks() {
        user.press(rightControl);
        EXPECT_TRUE(subject.lineWith("edge holdActivated"));
        user.release(rightControl);
        EXPECT_TRUE(subject.lineWith("edge holdDeactivated"));
    }

    KeySet down() { return keysDown(user.connection(), Deadline(5s)).value(); }

    PrivateServer server;
    PhysicalKeyboard user;
    TestWindow window;
    TapSubject subject{VELORIN_TAP_SUBJECT};
};

TEST_F(GuardTest, GivesTheKeyboardBackWhenTheProgramIsStoppedWithAPressInItsHands) {
    ASSERT_NE(subject.guard(), 0);
    expectThatHoldWorks();
    subject.stop();
    user.press(rightControl);
    user.tap(letterA);
    user.sync();
    const auto start = std::chrono::steady_clock::now();
    const auto keys = window.keys(2);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
    ASSERT_EQ(keys.size(), 2u) << "what was typed meanwhile arrives";
    EXPECT_EQ(keys[0].key, letterA);
    user.release(rightControl);
    user.tap(letterB);
    EXPECT_THAT(toString(window.keysThrough(letterB)), testing::EndsWith("56+ 56-"));
    subject.goOn();
    EXPECT_TRUE(down().none());
    // It has a new connection as soon as it runs; its grabs are there when the window no longer gets the key.
    const Deadline deadline(5s);
    do
        user.tap(rightControl);
    while (!window.keys(0).empty() && !deadline.hasPassed());
    EXPECT_TRUE(subject.lineWith("edge holdActivated"));
    EXPECT_TRUE(subject.lineWith("edge holdDeactivated"));
}

TEST_F(GuardTest, EndsAHoldWhoseReleaseCameWhileTheProgramWasStopped) {
    user.press(rightControl);
    ASSERT_TRUE(subject.lineWith("edge holdActivated"));
    user.tap(letterB);
    EXPECT_EQ(toString(window.keys(2)), "56+ 56-") << "the press has its answer";
    subject.stop();
    user.release(rightControl);
    user.tap(letterA);
    EXPECT_EQ(toString(window.keys(2)), "38+ 38-") << "nothing is held back while no bound key is pressed";
    user.press(rightControl); // and now it is
    user.release(rightControl);
    user.tap(letterA);
    EXPECT_GE(window.keys(2).size(), 2u);
    subject.goOn();
    EXPECT_TRUE(subject.lineWith("edge holdDeactivated"));
    EXPECT_TRUE(down().none());
}

TEST_F(GuardTest, IsNotNeededWhereNobodyReadsTheLog) {
    // A pipe that is full from the beginning: whoever writes a line into it waits for ever.
    std::array<int, 2> log{};
    ASSERT_EQ(pipe2(log.data(), O_CLOEXEC | O_NONBLOCK), 0);
    const std::array<char, 4096> bytes{};
    while (write(log[1], bytes.data(), bytes.size()) > 0) {
    }
    ASSERT_EQ(fcntl(log[1], F_SETFL, 0), 0);
    subject.kill();
    setenv("QT_LOGGING_RULES", "dev.orrin.velorin.tap.debug=true", 1);
    TapSubject logging(VELORIN_TAP_SUBJECT, {}, log[1]);
    unsetenv("QT_LOGGING_RULES");
    for (int i = 0; i < 20; ++i) {
        user.press(rightControl);
        EXPECT_TRUE(logging.lineWith("edge holdActivated", 2000));
        user.release(rightControl);
        EXPECT_TRUE(logging.lineWith("edge holdDeactivated", 2000));
    }
    user.tap(letterA);
    EXPECT_EQ(toString(window.keysThrough(letterA)), "38+ 38-")
        << "what the guard gives back comes to the window";
    close(log[0]);
    close(log[1]);
}

TEST_F(GuardTest, LeavesATapAloneThatAnswers) {
    for (int i = 0; i < 3; ++i)
        expectThatHoldWorks();
    std::this_thread::sleep_for(600ms); // past the moment at which it judges
    expectThatHoldWorks();
    EXPECT_FALSE(subject.lineWith("lost", 0));
    EXPECT_THAT(window.keys(), testing::IsEmpty());
}

TEST_F(GuardTest, ReleasesWhatAKilledProgramHeldDown) {
    user.press(leftShift);
    (void)window.keys(1);
    subject.command("paste");
    ASSERT_TRUE(subject.lineWith("pasted"));
    (void)window.keys(6); // the last of them gives Shift back
    const auto guard = subject.guard();
    subject.kill();
    const Deadline deadline(5s);
    while (kill(guard, 0) == 0 && !deadline.hasPassed())
        std::this_thread::yield(); // it ends when it has done its work
    EXPECT_FALSE(deadline.hasPassed());
    user.release(leftShift);
    user.sync();
    EXPECT_TRUE(down().none());
}

TEST_F(GuardTest, IsStartedAgainWhenItIsKilled) {
    const auto first = subject.guard();
    ASSERT_NE(first, 0);
    kill(first, SIGKILL);
    const Deadline deadline(5s);
    while ((subject.guard() == 0 || subject.guard() == first) && !deadline.hasPassed())
        std::this_thread::yield();
    EXPECT_NE(subject.guard(), 0);
    EXPECT_NE(subject.guard(), first);
    expectThatHoldWorks();
}

TEST_F(GuardTest, EndsWithTheProgram) {
    const auto guard = subject.guard();
    subject.command("quit");
    const Deadline deadline(5s);
    while (kill(guard, 0) == 0 && !deadline.hasPassed())
        std::this_thread::yield();
    EXPECT_FALSE(deadline.hasPassed());
}

TEST_F(GuardTest, SleepsWithTheTapWhileNoKeyIsPressed) {
    expectThatHoldWorks();
    const auto switches = [&] {
        return std::pair(voluntarySwitchesOf(subject.id()), voluntarySwitchesOf(subject.guard()));
    };
    // The guard's last question about that may come late on a busy machine.
    bool haveSlept = false;
    for (int round = 0; round < 5 && !haveSlept; ++round) {
        const auto before = switches();
        std::this_thread::sleep_for(3s);
        haveSlept = switches() == before;
    }
    EXPECT_TRUE(haveSlept);
}

} // namespace
} // namespace velorin

#include "core/MainTasks.h"

#include "platform/Gate.h"

#include <gmock/gmock.h>

namespace velorin {
namespace {

QCoro::Task<> waitAt(Gate& gate, int& passed, std::shared_ptr<int> kept) {
    co_await gate.opened();
    passed += *kept;
}

TEST(MainTasks, RunsATaskAtOnceUpToItsFirstWait) {
    MainTasks tasks;
    Gate gate(true);
    int passed = 0;
    tasks.launch(waitAt(gate, passed, std::make_shared<int>(2)));
    EXPECT_EQ(passed, 2);
    EXPECT_TRUE(tasks.isIdle());
}

TEST(MainTasks, KeepsATaskUntilItEnds) {
    MainTasks tasks;
    Gate gate(false);
    int passed = 0;
    const auto kept = std::make_shared<int>(1);
    tasks.launch(waitAt(gate, passed, kept));
    EXPECT_FALSE(tasks.isIdle());
    EXPECT_EQ(passed, 0);
    gate.open();
    EXPECT_EQ(passed, 1);
    EXPECT_TRUE(tasks.isIdle());
    EXPECT_EQ(kept.use_count(), 1);
}

QCoro::Task<> fail() {
    throw std::runtime_error("a bug");
    co_return;
}

TEST(MainTasksDeathTest, AnExceptionThatEscapesEndsTheProgramWithAMessage) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            MainTasks tasks;
            tasks.launch(fail());
        },
        "a task ended with an exception: a bug");
}

} // namespace
} // namespace velorin

#include "platform/linux/desktop/SystemClock.h"

#include <QDeadlineTimer>
#include <QEventLoop>

#include <gmock/gmock.h>

#include <optional>

using namespace std::chrono_literals;

namespace velorin {
namespace {

TEST(SystemClock, RunsAnActionOnceAfterItsDelay) {
    SystemClock clock;
    QEventLoop loop;
    int runs = 0;
    const auto timer = clock.after(1ms, [&] {
        ++runs;
        loop.quit();
    });
    loop.exec();
    EXPECT_EQ(runs, 1);
}

TEST(SystemClock, RunsNothingWhoseHandleIsGone) {
    SystemClock clock;
    QEventLoop loop;
    bool ran = false;
    {
        const auto cancelled = clock.after(0ms, [&] { ran = true; });
    }
    const auto later = clock.after(5ms, [&] { loop.quit(); });
    loop.exec();
    EXPECT_FALSE(ran);
}

TEST(SystemClock, AnActionMayDestroyItsOwnHandle) {
    SystemClock clock;
    QEventLoop loop;
    std::optional<Subscription> timer;
    timer = clock.after(0ms, [&] {
        timer.reset();
        loop.quit();
    });
    loop.exec();
    EXPECT_FALSE(timer.has_value());
}

} // namespace
} // namespace velorin

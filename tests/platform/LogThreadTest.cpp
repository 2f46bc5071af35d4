#include "platform/LogThread.h"

#include <gmock/gmock.h>

#include <chrono>
#include <future>
#include <vector>

using namespace std::chrono_literals;

namespace velorin {
namespace {

TEST(LogThread, WritesAllLinesInTheirOrderBeforeItGoes) {
    std::vector<int> lines;
    {
        LogThread log;
        for (int i = 0; i < 100; ++i)
            log.write([&lines, i] { lines.push_back(i); });
    }
    ASSERT_EQ(lines.size(), 100U);
    EXPECT_TRUE(std::ranges::is_sorted(lines));
}

TEST(LogThread, KeepsNobodyWaitingWhileALineIsStuck) {
    std::promise<void> isRead;
    const auto reading = isRead.get_future().share();
    const auto start = std::chrono::steady_clock::now();
    {
        LogThread log;
        log.write([reading] { reading.wait(); });
        for (int i = 0; i < 20'000; ++i)
            log.write([] {});
        EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s) << "it does not wait for ever when it goes";
    isRead.set_value();
}

} // namespace
} // namespace velorin

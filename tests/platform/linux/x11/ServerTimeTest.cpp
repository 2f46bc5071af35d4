#include "platform/linux/x11/ServerTime.h"

#include <gtest/gtest.h>

#include <limits>

using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr xcb_timestamp_t last = std::numeric_limits<xcb_timestamp_t>::max();

TEST(ServerTime, GoesOnWhereItsNumbersBeginAnew) {
    EXPECT_TRUE(ServerTime::isEarlier(last, 1));
    EXPECT_TRUE(ServerTime::isEarlier(last - 5000, 20));
    EXPECT_FALSE(ServerTime::isEarlier(20, last - 5000));
    EXPECT_TRUE(ServerTime::isEarlier(1, 2));
    EXPECT_FALSE(ServerTime::isEarlier(2, 2));
    EXPECT_FALSE(ServerTime::isEarlier(3, 2));
}

TEST(ServerTime, ARequestOfAfterTheTurnMeansWhatIsOwnedSinceBefore) {
    EXPECT_TRUE(ServerTime::means(40, last - 100, 1s));
    EXPECT_TRUE(ServerTime::means(last - 100, last - 100, 0s));
    EXPECT_FALSE(ServerTime::means(last - 101, last - 100, 1s)) << "it meant the owner before";
    EXPECT_FALSE(ServerTime::means(last - 100, 40, 1s));
    EXPECT_TRUE(ServerTime::means(XCB_CURRENT_TIME, last - 100, 1s));
}

TEST(ServerTime, WhatHasBeenOwnedForWeeksIsMeantByEveryRequest) {
    constexpr xcb_timestamp_t day = 24 * 60 * 60 * 1000;
    for (unsigned days = 0; days < 120; ++days)
        EXPECT_TRUE(ServerTime::means(last - 100 + days * day, last - 100, days * 24h)) << days;
}

} // namespace
} // namespace velorin

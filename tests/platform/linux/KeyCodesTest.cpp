#include "platform/linux/KeyCodes.h"

#include <gtest/gtest.h>

#include <set>

namespace velorin::KeyCodes {
namespace {

TEST(KeyCodes, GoBothWays) {
    std::set<std::uint16_t> codes;
    for (std::uint16_t evdev = 0; evdev < 256; ++evdev) {
        const auto code = fromEvdev(evdev);
        if (!code)
            continue;
        EXPECT_TRUE(codes.insert(*code).second) << *code;
        EXPECT_EQ(toEvdev(*code), evdev);
    }
    EXPECT_GT(codes.size(), 100u);
    EXPECT_EQ(toEvdev(9999), std::nullopt);
}

TEST(KeyCodes, CoverEveryKeyThatHasAName) {
    const std::uint16_t named[] = {49,  36,  48, 53, 51, 123, 124, 125, 126, 96, 97, 98, 100, 101, 109,
                                   103, 111, 0,  11, 8,  2,   14,  3,   5,   4,  34, 38, 40,  37,  46,
                                   45,  31,  35, 12, 15, 1,   17,  32,  9,   13, 7,  16, 6};
    for (const auto code : named)
        EXPECT_TRUE(toEvdev(code)) << code;
}

TEST(KeyCodes, MapModifiersToTheirSides) {
    EXPECT_EQ(fromEvdev(29), 59);  // left Ctrl
    EXPECT_EQ(fromEvdev(97), 62);  // right Ctrl
    EXPECT_EQ(fromEvdev(125), 55); // left Super
    EXPECT_EQ(fromEvdev(126), 54);
    EXPECT_EQ(fromEvdev(56), 58); // left Alt
    EXPECT_EQ(fromEvdev(100), 61);
    EXPECT_EQ(fromEvdev(42), 56); // left Shift
    EXPECT_EQ(fromEvdev(54), 60);
    EXPECT_EQ(fromEvdev(58), 57); // Caps Lock
    EXPECT_EQ(toEvdev(function), std::nullopt);
    EXPECT_EQ(flagOf(54), flagOf(55));
    EXPECT_EQ(flagOf(57), 0u);
    EXPECT_EQ(flagOf(63), 0x800000u);
}

TEST(KeyCodes, FindTheStandInForFn) {
    EXPECT_EQ(standInForFunction("fn"), 143);
    EXPECT_EQ(standInForFunction("menu"), 127);
    EXPECT_EQ(standInForFunction("rightControl"), 97);
    EXPECT_EQ(standInForFunction("rightAlt"), 100);
    EXPECT_EQ(standInForFunction("capsLock"), 58);
    EXPECT_EQ(standInForFunction("scrollLock"), 70);
    EXPECT_EQ(standInForFunction("pause"), 119);
    EXPECT_EQ(standInForFunction("something else"), 97);
}

} // namespace
} // namespace velorin::KeyCodes

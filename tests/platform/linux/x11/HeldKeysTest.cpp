#include "platform/linux/x11/HeldKeys.h"

#include <gtest/gtest.h>

namespace velorin {
namespace {

// X key codes, and the virtual ones.
constexpr xcb_keycode_t leftShift = 50;
constexpr xcb_keycode_t rightShift = 62;
constexpr xcb_keycode_t letterA = 38;
constexpr std::uint16_t leftShiftCode = 56;
constexpr std::uint16_t rightShiftCode = 60;
constexpr std::uint16_t letterACode = 0;
constexpr std::uint64_t shift = 0x20000;

KeySet keys(std::initializer_list<xcb_keycode_t> codes) {
    KeySet set;
    for (const auto code : codes)
        set.set(code);
    return set;
}

TEST(HeldKeys, GivesTheFlagsOfTheModifiersThatAreDown) {
    HeldKeys held;
    held.press(letterA, letterACode);
    EXPECT_EQ(held.flags(), 0U);
    held.press(leftShift, leftShiftCode);
    EXPECT_EQ(held.flags(), shift);
    EXPECT_EQ(held.all(), keys({leftShift, letterA}));
}

TEST(HeldKeys, GivesTheCodeOfAReleasedKey) {
    HeldKeys held;
    held.press(leftShift, leftShiftCode);
    EXPECT_EQ(held.release(leftShift), leftShiftCode);
    EXPECT_FALSE(held.isDown(leftShift));
    EXPECT_TRUE(held.all().none());
}

TEST(HeldKeys, HasAHiddenModifierUnseenUntilItComesUp) {
    HeldKeys held;
    held.press(leftShift, leftShiftCode);
    held.hide(leftShift);
    EXPECT_EQ(held.unseen(), keys({leftShift}));
    (void)held.release(leftShift);
    EXPECT_TRUE(held.unseen().none());
}

TEST(HeldKeys, TakesAModifierForDownThatComesUpWhileItsTwinIsHeld) {
    HeldKeys held;
    held.press(leftShift, leftShiftCode);
    held.press(rightShift, rightShiftCode);
    EXPECT_EQ(held.twins(), keys({leftShift, rightShift}));
    (void)held.release(leftShift);
    EXPECT_FALSE(held.isDown(leftShift));
    EXPECT_EQ(held.unseen(), keys({leftShift}));
    EXPECT_EQ(held.all(), keys({leftShift, rightShift}));
    EXPECT_TRUE(held.twins().none());
    (void)held.release(rightShift);
    EXPECT_EQ(held.unseen(), keys({leftShift})) << "only its own press and release end that";
    held.press(leftShift, leftShiftCode);
    EXPECT_TRUE(held.unseen().none());
}

TEST(HeldKeys, TakesBothOfAPairForDownWhenFlagsAloneWereTold) {
    HeldKeys held;
    held.press(leftShift, leftShiftCode);
    held.assumeTwins(TapKeys("rightControl"));
    EXPECT_EQ(held.unseen(), keys({rightShift}));
    held.forgetTwins();
    EXPECT_TRUE(held.unseen().none());
}

} // namespace
} // namespace velorin

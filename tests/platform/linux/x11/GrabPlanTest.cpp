#include "platform/linux/x11/GrabPlan.h"

#include "tests/platform/linux/x11/support/PrivateServer.h"

#include <gmock/gmock.h>

using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr std::uint32_t shiftBit = 1;
constexpr std::uint32_t lockBit = 2;
constexpr std::uint32_t controlBit = 4;
constexpr std::uint32_t altBit = 8;
constexpr std::uint32_t numLockBit = 16;
constexpr std::uint32_t superBit = 64;
constexpr int f5 = 71;
constexpr int rightControl = 105;

class GrabPlanTest : public testing::Test {
protected:
    /// The states without those of the locks; each must be there with every lock.
    std::set<std::uint32_t> states(const std::vector<TappedKey>& keys, int key,
                                   const char* standIn = "rightControl") {
        const auto plan = planGrabs(keys, TapKeys(standIn), map);
        const auto found = plan.find(static_cast<xcb_keycode_t>(key));
        if (found == plan.end())
            return {};
        std::set<std::uint32_t> plain;
        for (const auto state : found->second) {
            const auto base = state & ~(lockBit | numLockBit);
            for (const auto locks : {0U, lockBit, numLockBit, lockBit | numLockBit})
                EXPECT_TRUE(found->second.contains(base | locks)) << base << " " << locks;
            plain.insert(base);
        }
        return plain;
    }

    PrivateServer server;
    std::unique_ptr<XConnection> connection = XConnection::open();
    KeyboardMap map = KeyboardMap::read(*connection, Deadline(5s)).value();
};

TEST_F(GrabPlanTest, TakesNoMoreThanTheCombination) {
    EXPECT_THAT(states({{96, {0x100000}}}, f5), testing::ElementsAre(superBit));
    EXPECT_THAT(states({{96, {0}}}, f5), testing::ElementsAre(0U));
    EXPECT_THAT(states({{96, {0x60000}}}, f5), testing::ElementsAre(shiftBit | controlBit));
    EXPECT_THAT(states({{96, {0x80000, 0x20000}}}, f5), testing::ElementsAre(shiftBit, altBit));
}

TEST_F(GrabPlanTest, KnowsThatASwallowedModifierLeavesNoTrace) {
    // Fn alone, and F5 with Fn: the server never sees that Fn is held.
    const std::vector<TappedKey> keys{{63, {0}}, {96, {0x800000}}};
    EXPECT_THAT(states(keys, rightControl), testing::ElementsAre(0U));
    EXPECT_THAT(states(keys, f5), testing::ElementsAre(0U));
}

TEST_F(GrabPlanTest, KnowsTheTraceOfAnFnThatIsNotBoundItself) {
    EXPECT_THAT(states({{96, {0x800000}}}, f5), testing::ElementsAre(controlBit));
    EXPECT_THAT(states({{96, {0x800000}}}, f5, "menu"), testing::ElementsAre(0U));
}

TEST_F(GrabPlanTest, CountsTheOtherSideOfABoundModifier) {
    // Right Alt is bound and swallowed; left Alt is seen by the server.
    const std::vector<TappedKey> keys{{61, {0}}, {96, {0x80000}}};
    EXPECT_THAT(states(keys, f5), testing::ElementsAre(0U, altBit));
}

TEST_F(GrabPlanTest, CountsModifiersThatTheServerDoesNotSee) {
    KeySet unseen;
    unseen.set(64); // left Alt
    const auto plan = planGrabs({{96, {0x80000 | 0x40000}}}, TapKeys("rightControl"), map, unseen);
    for (const auto state : {controlBit, controlBit | altBit})
        EXPECT_TRUE(plan.at(f5).contains(state));
    EXPECT_FALSE(plan.at(f5).contains(altBit));
}

TEST_F(GrabPlanTest, LeavesOutKeysThatThereAreNot) {
    EXPECT_THAT(planGrabs({{62, {0}}, {999, {0}}}, TapKeys("rightControl"), map), testing::IsEmpty())
        << "right Ctrl stands in for Fn";
}

} // namespace
} // namespace velorin

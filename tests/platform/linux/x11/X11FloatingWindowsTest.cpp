#include "platform/linux/x11/X11FloatingWindows.h"

#include <gtest/gtest.h>

namespace velorin {
namespace {

using Strut = std::vector<std::uint32_t>;

const QSize screen(2560, 1440);
const QRect left(0, 0, 1280, 1024); // lower edge above that of the screen
const QRect right(1280, 0, 1280, 1440);

Strut bottomPanel(std::uint32_t height, const QRect& below) {
    return {0,
            0,
            0,
            height,
            0,
            0,
            0,
            0,
            0,
            0,
            static_cast<std::uint32_t>(below.left()),
            static_cast<std::uint32_t>(below.right())};
}

TEST(WithoutStruts, LeavesAMonitorWithoutPanelsWhole) { EXPECT_EQ(withoutStruts(right, screen, {}), right); }

TEST(WithoutStruts, TakesAPanelFromItsOwnMonitorOnly) {
    const auto panel = bottomPanel(40, right);
    EXPECT_EQ(withoutStruts(right, screen, {panel}), QRect(1280, 0, 1280, 1400));
    EXPECT_EQ(withoutStruts(left, screen, {panel}), left);
}

TEST(WithoutStruts, CountsFromTheEdgeOfTheWholeScreen) {
    // A panel at the foot of the lower monitor reserves what lies below that as well.
    const auto panel = bottomPanel(416 + 30, left);
    EXPECT_EQ(withoutStruts(left, screen, {panel}), QRect(0, 0, 1280, 994));
}

TEST(WithoutStruts, TakesPanelsAtAllEdges) {
    const Strut top{0, 0, 24, 0, 0, 0, 0, 0, 1280, 2559, 0, 0};
    const Strut atRight{0, 64, 0, 0, 0, 0, 0, 1439, 0, 0, 0, 0};
    EXPECT_EQ(withoutStruts(right, screen, {top, atRight}), QRect(1280, 24, 1216, 1416));
}

TEST(WithoutStruts, PassesOverWhatIsNoStrutAndWhatWouldLeaveNothing) {
    EXPECT_EQ(withoutStruts(right, screen, {{1, 2, 3}}), right);
    EXPECT_EQ(withoutStruts(right, screen, {bottomPanel(5000, right)}), right);
}

} // namespace
} // namespace velorin

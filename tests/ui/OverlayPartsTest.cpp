#include "ui/OverlayLabels.h"
#include "ui/OverlayShape.h"
#include "ui/WaveformBars.h"

#include <gmock/gmock.h>

#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

TEST(OverlayLabels, CountMinutesWithoutBound) { EXPECT_EQ(OverlayLabels::elapsed(3725), u"62:05"_s); }

TEST(OverlayLabels, ShowNoTimeBeforeARecordingAndWhenTheClockWasSetBack) {
    const auto now = QDateTime::fromMSecsSinceEpoch(1'000'000).toUTC();
    EXPECT_EQ(OverlayLabels::elapsed(std::nullopt, now), u"0:00"_s);
    EXPECT_EQ(OverlayLabels::elapsed(now.addSecs(5), now), u"0:00"_s);
    EXPECT_EQ(OverlayLabels::elapsed(now.addMSecs(-1999), now), u"0:01"_s);
}

TEST(WaveformBars, TakeALevelThatIsNoNumberAsSilence) {
    const auto bars = waveformBars(44, 24, {std::numeric_limits<float>::quiet_NaN(), 1.0F},
                                   {.barCount = 2, .fixedBarWidth = 2.5});
    EXPECT_EQ(bars[0].height, 5);
    EXPECT_EQ(bars[0].opacity, 0.55);
    EXPECT_EQ(bars[1].height, 24);
}

TEST(WaveformBars, LetTheNewestLevelEnterFromTheRight) {
    const auto bars = waveformBars(44, 24, {1.0F}, {.barCount = 10, .fixedBarWidth = 2.5});
    EXPECT_EQ(bars.first().height, 5);
    EXPECT_EQ(bars.last().height, 24);
}

TEST(OverlayShape, RoundsCornersWithinTheRectangle) {
    const QRectF rect(30, 30, 360, 102);
    for (const double radius : {16.0, 51.0}) {
        const auto path = continuousRect(rect, radius);
        EXPECT_EQ(path.boundingRect(), rect) << radius;
        EXPECT_FALSE(path.contains(QPointF(31, 31)));
        EXPECT_TRUE(path.contains(rect.center()));
        // The middle of a corner lies where that of a round one does.
        const double middle = 30 + radius * 0.2929;
        EXPECT_TRUE(path.contains(QPointF(middle + 0.3, middle + 0.3)));
        EXPECT_FALSE(path.contains(QPointF(middle - 0.3, middle - 0.3)));
    }
}

TEST(OverlayShape, CutsTheWindowInDevicePixels) {
    const auto region = pixelsOf(continuousRect(QRectF(30, 30, 380, 54), 27), 1.5);
    EXPECT_EQ(region.boundingRect(), QRect(45, 45, 570, 81));
    EXPECT_FALSE(region.contains(QPoint(46, 46)));
}

TEST(OverlayShape, CutsAllCornersAlike) {
    for (const double scale : {1.0, 1.5, 2.0})
        for (const QRectF& look : {QRectF(30, 30, 380, 54), QRectF(30, 30, 360, 102)}) {
            const auto region = pixelsOf(continuousRect(look, look.height() == 54 ? 27 : 16), scale);
            const QRect bounds = region.boundingRect();
            for (int y = bounds.top(); y <= bounds.bottom(); ++y)
                for (int x = bounds.left(); x <= bounds.center().x(); ++x) {
                    const QPoint across(bounds.left() + bounds.right() - x, y);
                    ASSERT_EQ(region.contains(QPoint(x, y)), region.contains(across)) << scale;
                    const QPoint below(x, bounds.top() + bounds.bottom() - y);
                    ASSERT_EQ(region.contains(QPoint(x, y)), region.contains(below)) << scale;
                }
        }
}

TEST(OverlayShape, ShadowFadesTowardsTheEdges) {
    const auto shadow =
        shadowOf(continuousRect(QRectF(30, 30, 380, 54), 27), QSizeF(440, 114), 1, 16, 7, 0.34);
    EXPECT_EQ(shadow.size(), QSize(440, 114));
    EXPECT_EQ(qAlpha(shadow.pixel(0, 0)), 0);
    EXPECT_NEAR(qAlpha(shadow.pixel(220, 64)), 0.34 * 255, 8);
    EXPECT_LT(qAlpha(shadow.pixel(220, 20)), qAlpha(shadow.pixel(220, 98)));
}

} // namespace
} // namespace velorin

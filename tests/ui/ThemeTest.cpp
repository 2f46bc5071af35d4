#include "ui/Theme.h"

#include "tests/ui/Fakes.h"

#include <gmock/gmock.h>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

double linear(double component) {
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}
double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}
double contrast(const QColor& a, const QColor& b) {
    const double first = luminance(a);
    const double second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QColor over(const QColor& below, const QColor& above, double opacity = 1) {
    const double alpha = above.alphaF() * opacity;
    const auto mix = [alpha](double under, double top) {
        return static_cast<float>(under + (top - under) * alpha);
    };
    return QColor::fromRgbF(mix(below.redF(), above.redF()), mix(below.greenF(), above.greenF()),
                            mix(below.blueF(), above.blueF()));
}

struct ThemeTest : testing::TestWithParam<bool> {
    ThemeTest() { appearance.dark = GetParam(); }

    /// The glass over the page that makes its text hardest to read.
    QColor worstGlass() const {
        return over(GetParam() ? Qt::white : Qt::black, theme().color(u"overlayFill"_s));
    }
    Theme& theme() const { return *theme_; }

    FakeAppearance appearance;
    std::unique_ptr<Theme> theme_;
    void SetUp() override { theme_ = std::make_unique<Theme>(appearance); }
};

INSTANTIATE_TEST_SUITE_P(LightAndDark, ThemeTest, testing::Bool());

TEST_P(ThemeTest, TextOfTheOverlayIsLegibleOverAnyPage) {
    const auto glass = worstGlass();
    const auto primary = theme().color(u"primary"_s);
    EXPECT_GT(contrast(over(glass, primary, 0.94), glass), 7) << "live text";
    EXPECT_GT(contrast(over(glass, primary, 0.75), glass), 4.5) << "names";
    EXPECT_GT(contrast(over(glass, primary, 0.6), glass), 4.5) << "elapsed time";
    EXPECT_GT(contrast(over(glass, primary, 0.55), glass), 3) << "placeholder and tags";
}

TEST_P(ThemeTest, ColoursOfThePhasesAreSeenOverAnyPage) {
    const auto glass = worstGlass();
    for (const auto& name : {u"accent"_s, u"green"_s, u"red"_s, u"amber"_s})
        EXPECT_GT(contrast(theme().color(name), glass), 2.2) << qPrintable(name);
}

TEST_P(ThemeTest, TextOfWindowsIsLegible) {
    for (const auto& ground : {u"window"_s, u"card"_s, u"field"_s, u"sidebar"_s}) {
        const auto color = theme().color(ground);
        EXPECT_GT(contrast(over(color, theme().color(u"primary"_s)), color), 7) << qPrintable(ground);
        EXPECT_GT(contrast(over(color, theme().color(u"secondary"_s)), color), 4.5) << qPrintable(ground);
    }
    EXPECT_GT(contrast(theme().color(u"onAccent"_s), theme().color(u"accentFill"_s)), 4.5);
}

TEST(Theme, FollowsTheDesktopWhileItRuns) {
    FakeAppearance appearance;
    appearance.dark = false;
    Theme theme(appearance);
    EXPECT_EQ(theme.color(u"card"_s), QColor(Qt::white));
    int changes = 0;
    QObject::connect(&theme, &Theme::changed, [&changes] { ++changes; });
    appearance.dark = true;
    appearance.listeners.tell();
    EXPECT_EQ(theme.color(u"card"_s), QColor(18, 31, 39));
    EXPECT_EQ(theme.value(u"isDark"_s), true);
    EXPECT_EQ(changes, 1);
}

TEST(Theme, IsLightWhereTheDesktopHasNoOpinionAndItsWindowsAreLight) {
    FakeAppearance appearance;
    appearance.dark = std::nullopt;
    EXPECT_FALSE(Theme(appearance).isDark());
}

} // namespace
} // namespace velorin

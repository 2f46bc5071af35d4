#include "tests/core/ModelFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace velorin {
namespace {

class OverlayPreviewOfTheModel : public ModelFixture {};

TEST_F(OverlayPreviewOfTheModel, ShowsSampleTextAndLevelsAndRestoresThePhase) {
    start();
    model->setOverlayPhase(OverlayPhase::error);
    model->previewOverlay();
    EXPECT_EQ(model->previewText(), u"This is how the overlay looks while you dictate."_s);
    EXPECT_FLOAT_EQ(*model->previewLevel(), 0.6F);
    ASSERT_EQ(model->previewLevels()->size(), 72);
    const auto levels = *model->previewLevels();
    for (const float level : levels) {
        EXPECT_GE(level, 0.06F);
        EXPECT_LE(level, 0.92F);
    }
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::listening);
    EXPECT_EQ(model->sessionGeneration(), 1);
    clock.advance(27 * 90ms);
    EXPECT_TRUE(model->hasPreviewText());
    EXPECT_EQ(model->previewLevels()->size(), 72);
    clock.advance(90ms);
    EXPECT_FALSE(model->hasPreviewText());
    EXPECT_EQ(model->previewLevels(), std::nullopt);
    EXPECT_EQ(model->previewLevel(), std::nullopt);
    EXPECT_EQ(model->recordingStartedAt(), std::nullopt);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::error);
    EXPECT_THAT(hud.calls, ElementsAre(u"show"_s, u"hide"_s));
}

TEST_F(OverlayPreviewOfTheModel, DoesNothingDuringADictation) {
    start();
    pressHold();
    hud.calls.clear();
    model->previewOverlay();
    EXPECT_THAT(hud.calls, IsEmpty());
    EXPECT_EQ(model->sessionGeneration(), 1);
}

TEST_F(OverlayPreviewOfTheModel, ASecondPreviewCancelsTheFirstAndRemembersItsListening) {
    start();
    model->previewOverlay();
    clock.advance(10 * 90ms);
    model->previewOverlay();
    clock.advance(27 * 90ms);
    EXPECT_TRUE(model->hasPreviewText()) << "the first one's end was cancelled";
    clock.advance(90ms);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::listening);
}

} // namespace
} // namespace velorin

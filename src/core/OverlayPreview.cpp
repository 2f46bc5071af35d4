#include "core/OverlayPreview.h"

#include "core/AppModel.h"
#include "core/Overlay.h"
#include "platform/Platform.h"

#include <QRandomGenerator>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int rounds = 28;
constexpr std::chrono::milliseconds roundLength{90};

float sampleLevel() {
    constexpr int steps = 10'000;
    const float share = static_cast<float>(QRandomGenerator::global()->bounded(steps + 1)) / steps;
    return 0.06F + share * (0.92F - 0.06F);
}

QList<float> sampleLevels() {
    QList<float> levels(AppModel::maximumLevels);
    for (float& level : levels)
        level = sampleLevel();
    return levels;
}

} // namespace

OverlayPreview::OverlayPreview(AppModel& model, Platform& platform, Overlay& hud)
    : model_(model), platform_(platform), hud_(hud) {}

void OverlayPreview::show() {
    timer_ = {};
    model_.setSessionGeneration(model_.sessionGeneration() + 1);
    model_.setIsEditSession(false);
    model_.setAIProcessing(std::nullopt);
    phaseBefore_ = model_.overlayPhase();
    model_.setTargetApp(platform_.workspace.frontmostApplication());
    model_.setPreviewText(AppModel::tr("This is how the overlay looks while you dictate."));
    model_.setPreviewLevel(0.6F);
    model_.setPreviewLevels(sampleLevels());
    model_.setRecordingStartedAt(platform_.clock.now());
    model_.setOverlayPhase(OverlayPhase::listening);
    hud_.show(model_);
    roundsLeft_ = rounds;
    scheduleRound();
}

void OverlayPreview::scheduleRound() {
    timer_ = platform_.clock.after(roundLength, [this] { playRound(); });
}

void OverlayPreview::playRound() {
    auto levels = model_.previewLevels().value_or(QList<float>());
    levels.append(sampleLevel());
    if (levels.size() > AppModel::maximumLevels)
        levels.remove(0, levels.size() - AppModel::maximumLevels);
    model_.setPreviewLevels(levels);
    if (--roundsLeft_ > 0)
        scheduleRound();
    else
        end();
}

void OverlayPreview::end() {
    if (!model_.hasPreviewText())
        return;
    timer_ = {};
    hud_.hide();
    model_.setPreviewText(std::nullopt);
    model_.setPreviewLevels(std::nullopt);
    model_.setPreviewLevel(std::nullopt);
    model_.setRecordingStartedAt(std::nullopt);
    model_.setOverlayPhase(phaseBefore_);
}

} // namespace velorin

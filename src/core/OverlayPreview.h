/// Shows the overlay as if somebody dictated, for the settings: about two and a half seconds of moving
/// levels. Main thread.
#pragma once

#include "core/ModelTypes.h"
#include "platform/Subscription.h"

namespace velorin {

class AppModel;
class Overlay;
struct Platform;

class OverlayPreview final {
public:
    OverlayPreview(AppModel& model, Platform& platform, Overlay& hud);

    /// A preview that still runs is cancelled and restores nothing. Not during a dictation.
    void show();
    /// Ends one that still runs, as its time would.
    void end();

private:
    void scheduleRound();
    void playRound();

    AppModel& model_;
    Platform& platform_;
    Overlay& hud_;
    Subscription timer_;
    int roundsLeft_ = 0;
    OverlayPhase phaseBefore_ = OverlayPhase::done;
};

} // namespace velorin

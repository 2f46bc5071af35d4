/// What a dictation reaches outside the model, gathered: the engine, the neighbours and the ports. Everything
/// in it outlives the session.
#pragma once

#include "core/CaptureLog.h"
#include "core/FinishingOperations.h"
#include "core/History.h"
#include "core/InsertionRouter.h"
#include "core/MainTasks.h"
#include "core/Overlay.h"
#include "core/OverlayPreview.h"
#include "core/SelectionOperations.h"
#include "platform/Platform.h"
#include "speech/SpeechEngine.h"

namespace velorin {

struct DictationServices {
    Platform& platform;
    SpeechEngine& engine;
    FinishingOperations& finishing;
    SelectionOperations& selection;
    Overlay& hud;
    OverlayPreview& preview;
    History& history;
    CaptureLog& captureLog;
    InsertionRouter& router;
    MainTasks& tasks;
};

} // namespace velorin

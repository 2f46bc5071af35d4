/// What a plain dictation makes of the recogniser's text, by the user's settings. Pure.
#pragma once

#include "delivery/ContextProfile.h"

#include <QString>

namespace velorin {

class AppState;

/// With the cleanup switched off, replacements and the spoken commands for layout still work.
[[nodiscard]] QString cleanedTranscript(const QString& transcript, const AppState& settings,
                                        ContextProfile profile);

} // namespace velorin

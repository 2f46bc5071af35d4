/// What the overlay says about a dictation, as plain texts of the model's state.
///
///     OverlayLabels::state(model)         // "Listening"
///     OverlayLabels::elapsed(3725)        // "62:05"
///
/// Pure. Main thread, since the state is read.
#pragma once

#include "delivery/ContextProfile.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace velorin {
class AppState;
}

namespace velorin::OverlayLabels {

/// The state of the session in a word: "Listening", "Polishing", "Inserted" …
[[nodiscard]] QString state(const AppState& model);

/// What stands in the place of the live text as long as there is none.
[[nodiscard]] QString placeholder(const AppState& model);

/// What was understood so far; empty when nothing was. A preview's text stands as it is.
[[nodiscard]] QString liveText(const AppState& model);

/// Minutes and seconds, such as "0:07" and "62:05"; fractions are cut off.
[[nodiscard]] QString elapsed(double seconds);
/// The same since the beginning of the recording, "0:00" when there is none.
[[nodiscard]] QString elapsed(const std::optional<QDateTime>& recordingStartedAt, const QDateTime& now);

/// The name of a profile, "Generic", as people read it.
[[nodiscard]] QString title(ContextProfile profile);

/// "EDIT" or "GEN" in such a session, otherwise empty.
[[nodiscard]] QString sessionTag(const AppState& model);

} // namespace velorin::OverlayLabels

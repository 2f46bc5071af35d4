/// How a shortcut is used: held down while speaking, or tapped to begin and tapped again to end.
#pragma once

#include <QString>

namespace velorin {

enum class RecordingTriggerMode { hold, toggle };

/// "hold", "toggle".
[[nodiscard]] QString rawString(RecordingTriggerMode mode);

} // namespace velorin

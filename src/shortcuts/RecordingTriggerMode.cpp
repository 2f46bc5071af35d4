#include "shortcuts/RecordingTriggerMode.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {

QString rawString(RecordingTriggerMode mode) {
    return mode == RecordingTriggerMode::hold ? u"hold"_s : u"toggle"_s;
}

} // namespace velorin

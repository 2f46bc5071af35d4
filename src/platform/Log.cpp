#include "platform/Log.h"

namespace velorin {

Q_LOGGING_CATEGORY(permissionsLog, "dev.orrin.velorin.permissions", QtInfoMsg)
Q_LOGGING_CATEGORY(insertLog, "dev.orrin.velorin.insert", QtInfoMsg)
Q_LOGGING_CATEGORY(shortcutLog, "dev.orrin.velorin.shortcut", QtInfoMsg)
Q_LOGGING_CATEGORY(contextLog, "dev.orrin.velorin.context", QtInfoMsg)
Q_LOGGING_CATEGORY(aiLog, "dev.orrin.velorin.ai", QtInfoMsg)
Q_LOGGING_CATEGORY(tapLog, "dev.orrin.velorin.tap", QtInfoMsg)
Q_LOGGING_CATEGORY(speechLog, "dev.orrin.velorin.speech", QtInfoMsg)
Q_LOGGING_CATEGORY(selectionLog, "dev.orrin.velorin.selection", QtInfoMsg)

} // namespace velorin

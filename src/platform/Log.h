/// The log channels, named "dev.orrin.velorin.<category>". They hold lengths, identifiers, hosts, model
/// names and durations, never what was said, prompted, answered, or a key.
///
///     qCInfo(insertLog).noquote() << u"insertion path: %1"_s.arg(path);
///
/// Debug lines are off until the user turns a category on (QT_LOGGING_RULES).
#pragma once

#include <QLoggingCategory>

namespace velorin {

Q_DECLARE_LOGGING_CATEGORY(permissionsLog)
Q_DECLARE_LOGGING_CATEGORY(insertLog)
Q_DECLARE_LOGGING_CATEGORY(shortcutLog)
Q_DECLARE_LOGGING_CATEGORY(contextLog)
Q_DECLARE_LOGGING_CATEGORY(aiLog)
Q_DECLARE_LOGGING_CATEGORY(tapLog)
Q_DECLARE_LOGGING_CATEGORY(speechLog)
Q_DECLARE_LOGGING_CATEGORY(selectionLog)

} // namespace velorin

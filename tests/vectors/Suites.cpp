#include "Suites.h"

namespace velorin::vectors {

SuiteTable allSuites() {
    SuiteTable table;
    addCleanupSuites(table);
    addCoreSuites(table);
    addDeliverySuites(table);
    addShortcutSuites(table);
    addSpeechSuites(table);
    return table;
}

} // namespace velorin::vectors

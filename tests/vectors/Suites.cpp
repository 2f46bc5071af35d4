#include "Suites.h"

namespace velorin::vectors {

SuiteTable allSuites() {
    SuiteTable table;
    addAISuites(table);
    addCleanupSuites(table);
    addCoreSuites(table);
    addDeliverySuites(table);
    addFlowSuites(table);
    addShortcutSuites(table);
    addSpeechSuites(table);
    addUiSuites(table);
    return table;
}

} // namespace velorin::vectors

#include "Suites.h"

namespace velorin::vectors {

SuiteTable allSuites() {
    SuiteTable table;
    addShortcutSuites(table);
    return table;
}

} // namespace velorin::vectors

/// Who adds suites: one function a subsystem.
#pragma once

#include "SuiteTable.h"

namespace velorin::vectors {

void addAISuites(SuiteTable& table);
void addCleanupSuites(SuiteTable& table);
void addCoreSuites(SuiteTable& table);
void addDeliverySuites(SuiteTable& table);
void addFlowSuites(SuiteTable& table);
void addShortcutSuites(SuiteTable& table);
void addSpeechSuites(SuiteTable& table);
void addUiSuites(SuiteTable& table);

/// All of them.
[[nodiscard]] SuiteTable allSuites();

} // namespace velorin::vectors

/// Runs folders of cases and tells how they went.
///
/// For each suite, in the order in which their files come, it writes the first differences (input, expected,
/// got) and then "suite: N passed, N failed", or "suite: unknown" where the table has no such suite. What
/// could not be read is told as well.
#pragma once

#include "SuiteTable.h"

#include <QByteArray>
#include <QStringList>

#include <functional>

namespace velorin::vectors {

struct RunOptions {
    QStringList folders;
    /// Where a suite has a slow reference implementation, that is run in place of the ordinary one.
    bool usesReference = false;
};

/// Writes the report line by line (without line feeds). True if something ran, all of it passed, each suite
/// was known and each folder and file could be read.
[[nodiscard]] bool run(const SuiteTable& table, const RunOptions& options,
                       const std::function<void(const QByteArray& line)>& write);

} // namespace velorin::vectors

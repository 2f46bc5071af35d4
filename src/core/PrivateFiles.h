/// Files that only the user may read, in a folder that only the user may enter. Failures are told by the
/// result and by nothing else.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <limits>
#include <optional>

namespace velorin::PrivateFiles {

/// Nothing also for a file of more than `mostBytes`.
[[nodiscard]] std::optional<QByteArray> read(const QString& path,
                                             qint64 mostBytes = std::numeric_limits<qint64>::max());

/// Replaces the file in one step, so that a crash leaves the old or the new one; makes the folder.
bool write(const QString& path, const QByteArray& data);

/// Adds a line, with its line feed, to an existing file's end, or makes the file; makes the folder.
bool appendLine(const QString& path, const QByteArray& line);

/// Sees to it that the last line has its line feed: one that a process was killed in goes, unless
/// `isWhole` says that nothing is missing, or it is far longer than any of ours. Leaves the file alone while
/// somebody appends to it.
void mendLastLine(const QString& path, const std::function<bool(const QByteArray&)>& isWhole);

} // namespace velorin::PrivateFiles

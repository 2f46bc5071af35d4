/// Replaces a file as a whole: afterwards it holds either what it held before or all of the new content, also
/// when the disk is full or the process is killed meanwhile. Any thread.
///
///     if (const auto written = replaceFile(path, data); !written)
///         warn(written.error());
///
/// A process that is killed leaves a file "<name>.velorin-unfinished-<16 hexadecimal digits>" beside the one
/// that it was to replace. Nothing but names of exactly this form is ever taken for such a leftover: whatever
/// else lies there is the user's.
#pragma once

#include <QByteArray>
#include <QString>

#include <tl/expected.hpp>

#include <chrono>

namespace velorin {

/// The folder must exist. The file is readable and writable by the user alone from its first moment. A link
/// stays, and what it leads to is replaced. The error is in words.
[[nodiscard]] tl::expected<void, QString> replaceFile(const QString& path, const QByteArray& data);

/// Deletes what processes that were killed while they replaced this file have left. `leastAge` spares what
/// somebody else may be writing now.
void removeUnfinished(const QString& path, std::chrono::seconds leastAge = std::chrono::minutes(1));

/// Gives a file that cannot be read another name, so that a new one can take its place:
/// "history.unreadable.json", then "history.unreadable.2.json" and so on for "history.json". What has such a
/// name already stays as it is. False when the file is still in its place.
[[nodiscard]] bool setUnreadableAside(const QString& path);

} // namespace velorin

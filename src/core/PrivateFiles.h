/// Files that only the user may read, in a folder that only the user may enter. Failures are told by the
/// result and by nothing else.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace velorin::PrivateFiles {

[[nodiscard]] std::optional<QByteArray> read(const QString& path);

/// Replaces the file in one step, so that a crash leaves the old or the new one; makes the folder.
bool write(const QString& path, const QByteArray& data);

/// Adds to an existing file's end, or makes the file; makes the folder.
bool append(const QString& path, const QByteArray& data);

} // namespace velorin::PrivateFiles

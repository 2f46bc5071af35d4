/// Replaces a file as a whole: afterwards it holds either what it held before or all of the new content, also
/// when the disk is full or the process is killed meanwhile. Any thread.
///
///     if (const auto written = replaceFile(path, data, QFile::ReadOwner | QFile::WriteOwner); !written)
///         warn(written.error());
#pragma once

#include <QByteArray>
#include <QFileDevice>
#include <QString>

#include <tl/expected.hpp>

#include <optional>

namespace velorin {

/// The folder must exist. Without `permissions` a new file gets the usual ones. The error is in words.
[[nodiscard]] tl::expected<void, QString>
replaceFile(const QString& path, const QByteArray& data,
            std::optional<QFileDevice::Permissions> permissions = std::nullopt);

} // namespace velorin

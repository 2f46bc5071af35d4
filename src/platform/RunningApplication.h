/// An application that runs in this session, as far as the rules need to know it. A value.
#pragma once

#include <QString>

#include <optional>

namespace velorin {

struct RunningApplication {
    qint64 processIdentifier = 0;
    /// The application's own identifier, as it is logged and shown.
    std::optional<QString> bundleIdentifier;
    /// The identifier by which the rules know it; that of its nearest relative in their tables.
    std::optional<QString> kin;
    /// The name that people know it by.
    std::optional<QString> localizedName;
    /// The program's file, empty where it cannot be told.
    QString executablePath;
    /// Its icon: a name in the desktop's theme or a file's path.
    std::optional<QString> icon{};
    /// The window that was in front; 0 for none. Meaningful to the workspace only.
    quint64 window = 0;

    bool operator==(const RunningApplication&) const = default;
};

} // namespace velorin

/// What a stranger reads from, or puts on, the clipboard: xclip in a process of its own.
#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QProcess>

#include <optional>

namespace velorin {

inline constexpr int xclipDeadline = 10'000;

/// Nothing when there is nothing of that type.
inline std::optional<QByteArray> readWithXclip(const QString& selection, const QString& type) {
    QProcess process;
    process.start(QStringLiteral("xclip"), {QStringLiteral("-o"), QStringLiteral("-selection"), selection,
                                            QStringLiteral("-t"), type});
    if (!process.waitForFinished(xclipDeadline) || process.exitCode() != 0)
        return std::nullopt;
    return process.readAllStandardOutput();
}

/// xclip goes on in the background as the owner, which it is when this returns true.
inline bool copyWithXclip(const QString& selection, const QByteArray& text) {
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QStringLiteral("xclip"), {QStringLiteral("-i"), QStringLiteral("-selection"), selection});
    process.write(text);
    process.closeWriteChannel();
    if (!process.waitForFinished(xclipDeadline) || process.exitCode() != 0)
        return false;
    // It goes into the background before the server has heard of it.
    const auto end = QDeadlineTimer(xclipDeadline);
    while (!end.hasExpired())
        if (readWithXclip(selection, QStringLiteral("UTF8_STRING")) == text)
            return true;
    return false;
}

} // namespace velorin

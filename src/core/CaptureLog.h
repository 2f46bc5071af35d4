/// Raw and cleaned text side by side, one JSON object a line, for whoever wants to study the cleanup. Off by
/// default. No failure interrupts a dictation. Main thread, synchronous.
#pragma once

#include "platform/RunningApplication.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace velorin {

class AppModel;
struct Platform;

class CaptureLog final {
public:
    CaptureLog(AppModel& model, Platform& platform);

    /// `kind` is "dictation", "generate" or "edit". Nothing is written while the log is switched off or for a
    /// raw text without a visible character.
    void capture(const QString& raw, const QString& cleaned, const QString& kind,
                 const std::optional<RunningApplication>& target);
    /// Brings the summary up to date, if there is a log to sum up.
    void countLater();
    /// Takes away half a line that a killed process has left.
    void mend();
    void refreshStatus();
    void reveal();
    void clear();

    /// The summary line of a file with this content, or of no file.
    [[nodiscard]] static QString statusText(const std::optional<QByteArray>& content);

private:
    [[nodiscard]] QString filePath() const;

    AppModel& model_;
    Platform& platform_;
};

} // namespace velorin

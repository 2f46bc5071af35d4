/// Raw and cleaned text side by side, one JSON object a line, for whoever wants to study the cleanup. Off by
/// default, and while it is off, nothing looks at its file unasked. No failure interrupts a dictation. Main
/// thread; what takes time with a large file is done in the background.
#pragma once

#include "core/LineCounter.h"
#include "platform/RunningApplication.h"

#include <QByteArray>
#include <QFutureWatcher>
#include <QString>

#include <memory>
#include <optional>

namespace velorin {

class AppModel;
struct Platform;

class CaptureLog final {
public:
    CaptureLog(AppModel& model, Platform& platform);
    CaptureLog(const CaptureLog&) = delete;
    CaptureLog& operator=(const CaptureLog&) = delete;
    ~CaptureLog();

    /// At the start of the program: takes away what a killed process has left and, while the log is switched
    /// on, tells its status.
    void open();
    /// Appends a line. `kind` is "dictation", "generate" or "edit". Nothing is written while the log is
    /// switched off or for a raw text without a visible character.
    void capture(const QString& raw, const QString& cleaned, const QString& kind,
                 const std::optional<RunningApplication>& target);
    /// Tells the status once what goes on now is done, a delivery for one; reads what was appended only.
    /// Nothing happens while the log is switched off.
    void countLater();
    /// Tells the status to a view that asks for it, switched on or off. Counts all lines anew; it comes later
    /// where there is something to count.
    void refreshStatus();
    /// Whether the status is that of the file as it was when it was last asked for.
    [[nodiscard]] bool isSettled() const { return !isCounting_; }
    void reveal();
    void clear();

    /// The summary line of a file with this content, or of no file.
    [[nodiscard]] static QString statusText(const std::optional<QByteArray>& content);

private:
    /// Shared with the count that runs, which may outlive us by a piece of the file.
    struct Counting {
        LineCounter counter;
        std::atomic<bool> isStopped = false;
    };

    [[nodiscard]] QString filePath() const;
    void mend();
    void askForCount();
    void count();
    void tell();

    AppModel& model_;
    Platform& platform_;
    std::shared_ptr<Counting> counting_ = std::make_shared<Counting>();
    QFutureWatcher<std::optional<LineCounter::Count>> watcher_;
    bool isMended_ = false;
    bool isCounting_ = false;
    bool isAskedAgain_ = false;
    bool isStale_ = false; ///< What was counted may have been changed.
};

} // namespace velorin

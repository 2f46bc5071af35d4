/// The texts that were delivered, newest first, in memory and in a file.
///
/// No failure interrupts a dictation: a write that fails leaves the list right and the file out of date.
/// Main thread, synchronous.
#pragma once

#include "core/DictationRecord.h"
#include "platform/RunningApplication.h"

namespace velorin {

class AppModel;
class ApplicationFolders;
class Clock;

class History final {
public:
    static constexpr qsizetype maximumRecords = 200;
    /// Nobody waits for a file that somebody has blown up.
    static constexpr qsizetype mostRecordsRead = 5000;
    static constexpr qint64 mostBytesRead = 16LL << 20;
    /// Less than is read again: the oldest records go before the file grows beyond it.
    static constexpr qsizetype mostBytesWritten = 15LL << 20;

    History(AppModel& model, ApplicationFolders& folders, Clock& clock);

    /// Where the file is.
    [[nodiscard]] static QString path(const ApplicationFolders& folders);

    /// Reads the file; what cannot be read, or is far larger than what we write, is an empty history. Such a
    /// file stays as it is until the first change, which keeps it as "history.unreadable.json", or with the
    /// next number that is free.
    void load();
    /// Nothing happens while the history is switched off or for a text without a visible character. Of a very
    /// long text the beginning is kept.
    void record(const QString& raw, const QString& cleaned, const std::optional<RunningApplication>& target);
    void remove(const DictationRecord& record);
    void clear();

private:
    [[nodiscard]] QString filePath() const;
    void save();

    AppModel& model_;
    ApplicationFolders& folders_;
    Clock& clock_;
    DictationRecordsEncoder encoder_;
    bool isUnreadable_ = false;
};

} // namespace velorin

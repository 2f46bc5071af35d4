#include "core/History.h"

#include "core/AppModel.h"
#include "core/PrivateFiles.h"
#include "platform/ApplicationFolders.h"
#include "platform/Clock.h"
#include "platform/WholeFile.h"
#include "text/WhiteSpace.h"

#include <QFile>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

History::History(AppModel& model, ApplicationFolders& folders, Clock& clock)
    : model_(model), folders_(folders), clock_(clock) {}

QString History::path(const ApplicationFolders& folders) { return folders.dataFolder() + u"/history.json"_s; }

QString History::filePath() const { return path(folders_); }

void History::load() {
    removeUnfinished(filePath());
    const auto data = PrivateFiles::read(filePath(), mostBytesRead);
    auto records = data ? decodeDictationRecords(*data, mostRecordsRead) : std::nullopt;
    isUnreadable_ = !records && QFile::exists(filePath());
    if (!records)
        return;
    (void)encoder_.encode(*records); // the first dictation waits less than the start does
    model_.setHistory(std::move(*records));
}

void History::record(const QString& raw, const QString& cleaned,
                     const std::optional<RunningApplication>& target) {
    if (!model_.historyEnabled())
        return;
    const QString text = WhiteSpace::trimmed(cleaned, WhiteSpace::Set::whitespacesAndNewlines).toString();
    if (text.isEmpty())
        return;
    DictationRecord record{
        .id = QUuid::createUuid(),
        .date = clock_.now(),
        .appName = target ? target->localizedName.value_or(u"Unknown app"_s) : u"Unknown app"_s,
        .text = text,
        .raw = WhiteSpace::trimmed(raw, WhiteSpace::Set::whitespacesAndNewlines).toString()};
    record.shorten();
    model_.changeHistory([&record](QList<DictationRecord>& history) {
        history.prepend(record);
        if (history.size() > maximumRecords)
            history.resize(maximumRecords);
    });
    save();
}

void History::remove(const DictationRecord& record) {
    model_.changeHistory([&record](QList<DictationRecord>& history) {
        history.removeIf([&record](const DictationRecord& entry) { return entry.id == record.id; });
    });
    save();
}

void History::clear() {
    model_.changeHistory([](QList<DictationRecord>& history) { history.clear(); });
    save();
}

void History::save() {
    isUnreadable_ = isUnreadable_ && !setUnreadableAside(filePath());
    const qsizetype fitting = encoder_.fitting(model_.history(), mostBytesWritten);
    if (fitting < model_.history().size())
        model_.changeHistory([fitting](QList<DictationRecord>& history) { history.resize(fitting); });
    if (!isUnreadable_)
        PrivateFiles::write(filePath(), encoder_.encode(model_.history()));
}

} // namespace velorin

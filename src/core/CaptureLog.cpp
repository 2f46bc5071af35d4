#include "core/CaptureLog.h"

#include "core/AppModel.h"
#include "core/PrivateFiles.h"
#include "platform/Background.h"
#include "platform/Platform.h"
#include "platform/WholeFile.h"
#include "text/WhiteSpace.h"

#include <QBuffer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QString statusLine(const std::optional<LineCounter::Count>& count) {
    if (!count)
        return AppModel::tr("No capture file yet.");
    const qint64 kilobytes = std::max<qint64>(count->bytes / 1024, 1);
    return u"%1 dictation%2 · %3 KB"_s.arg(
        QString::number(count->lines), count->lines == 1 ? QString() : u"s"_s, QString::number(kilobytes));
}

} // namespace

CaptureLog::CaptureLog(AppModel& model, Platform& platform) : model_(model), platform_(platform) {
    QObject::connect(&watcher_, &QFutureWatcherBase::finished, &watcher_, [this] { tell(); });
}

CaptureLog::~CaptureLog() { counting_->isStopped = true; }

QString CaptureLog::filePath() const {
    return platform_.folders.dataFolder() + u"/dictation-capture.jsonl"_s;
}

void CaptureLog::open() {
    removeUnfinished(filePath());
    if (!model_.captureDictations())
        return;
    mend();
    if (QFile::exists(filePath()))
        countLater();
    else
        model_.setCaptureStatus(statusLine(std::nullopt));
}

void CaptureLog::capture(const QString& raw, const QString& cleaned, const QString& kind,
                         const std::optional<RunningApplication>& target) {
    if (!model_.captureDictations())
        return;
    const QString trimmed = WhiteSpace::trimmed(raw, WhiteSpace::Set::whitespacesAndNewlines).toString();
    if (trimmed.isEmpty())
        return;
    const QJsonObject line{{u"at"_s, platform_.clock.now().toUTC().toString(Qt::ISODate)},
                           {u"app"_s, target ? target->localizedName.value_or(QString()) : QString()},
                           {u"kind"_s, kind},
                           {u"raw"_s, trimmed},
                           {u"cleaned"_s, cleaned}};
    mend();
    PrivateFiles::appendLine(filePath(), QJsonDocument(line).toJson(QJsonDocument::Compact));
}

/// Once, and before the first line: ours would be lost behind half a line of a killed process.
void CaptureLog::mend() {
    if (std::exchange(isMended_, true))
        return;
    PrivateFiles::mendLastLine(
        filePath(), [](const QByteArray& line) { return QJsonDocument::fromJson(line).isObject(); });
}

QString CaptureLog::statusText(const std::optional<QByteArray>& content) {
    if (!content)
        return statusLine(std::nullopt);
    QBuffer buffer;
    buffer.setData(*content);
    buffer.open(QIODevice::ReadOnly);
    return statusLine(LineCounter().count(buffer, false));
}

void CaptureLog::countLater() {
    if (model_.captureDictations())
        askForCount();
}

void CaptureLog::refreshStatus() {
    if (!QFile::exists(filePath()))
        model_.setCaptureStatus(statusLine(std::nullopt));
    isStale_ = true;
    askForCount();
}

void CaptureLog::askForCount() {
    isAskedAgain_ = true;
    // Whoever asks goes on with what cannot wait.
    if (!std::exchange(isCounting_, true))
        QMetaObject::invokeMethod(
            &watcher_, [this] { count(); }, Qt::QueuedConnection);
}

void CaptureLog::count() {
    isAskedAgain_ = false;
    watcher_.setFuture(
        inBackground([counting = counting_, path = filePath(), isStale = std::exchange(isStale_, false)] {
            if (isStale)
                counting->counter.startAnew();
            return counting->counter.count(path, counting->isStopped);
        }));
}

void CaptureLog::tell() {
    model_.setCaptureStatus(statusLine(watcher_.result()));
    isCounting_ = isAskedAgain_;
    if (isAskedAgain_)
        count();
}

void CaptureLog::reveal() {
    if (QFile::exists(filePath()))
        platform_.workspace.revealFile(filePath());
    else
        model_.setCaptureStatus(statusLine(std::nullopt));
}

void CaptureLog::clear() {
    QFile::remove(filePath());
    refreshStatus();
}

} // namespace velorin

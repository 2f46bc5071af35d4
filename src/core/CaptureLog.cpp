#include "core/CaptureLog.h"

#include "core/AppModel.h"
#include "core/PrivateFiles.h"
#include "platform/Platform.h"
#include "text/WhiteSpace.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QString statusLine(qsizetype count, qint64 size) {
    const qint64 kilobytes = std::max<qint64>(size / 1024, 1);
    return u"%1 dictation%2 · %3 KB"_s.arg(QString::number(count), count == 1 ? QString() : u"s"_s,
                                           QString::number(kilobytes));
}

/// Lines that are not empty; 0 when the bytes are no text.
qsizetype lineCount(const QByteArray& content) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    const QString text = decoder.decode(content);
    if (decoder.hasError())
        return 0;
    return QStringView(text).split(u'\n', Qt::SkipEmptyParts).size();
}

} // namespace

CaptureLog::CaptureLog(AppModel& model, Platform& platform) : model_(model), platform_(platform) {}

QString CaptureLog::filePath() const {
    return platform_.folders.dataFolder() + u"/dictation-capture.jsonl"_s;
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
    PrivateFiles::appendLine(filePath(), QJsonDocument(line).toJson(QJsonDocument::Compact));
}

void CaptureLog::countLater() {
    if (model_.captureDictations())
        refreshStatus();
}

void CaptureLog::mend() {
    PrivateFiles::mendLastLine(
        filePath(), [](const QByteArray& line) { return QJsonDocument::fromJson(line).isObject(); });
}

QString CaptureLog::statusText(const std::optional<QByteArray>& content) {
    if (!content)
        return AppModel::tr("No capture file yet.");
    return statusLine(lineCount(*content), content->size());
}

void CaptureLog::refreshStatus() {
    const QFileInfo file(filePath());
    const auto content = PrivateFiles::read(file.filePath());
    // A file that is there but cannot be read counts no lines; it is not as if there were none.
    model_.setCaptureStatus(content || !file.exists() ? statusText(content) : statusLine(0, file.size()));
}

void CaptureLog::reveal() {
    if (QFile::exists(filePath()))
        platform_.workspace.revealFile(filePath());
    else
        model_.setCaptureStatus(statusText(std::nullopt));
}

void CaptureLog::clear() {
    QFile::remove(filePath());
    refreshStatus();
}

} // namespace velorin

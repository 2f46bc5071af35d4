#include "core/DictationRecord.h"

#include "text/Graphemes.h"
#include "text/WhiteSpace.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// As it stands within an array.
QByteArray indented(const QJsonObject& json) {
    QByteArray text = QJsonDocument(json).toJson(QJsonDocument::Indented).chopped(1);
    return "    " + text.replace("\n", "\n    ");
}

qsizetype utf8Bytes(QChar unit) {
    if (unit.isSurrogate())
        return 2; // of four, for both
    return unit.unicode() < 0x80 ? 1 : unit.unicode() < 0x800 ? 2 : 3;
}

/// Where what is behind `most` bytes begins; the end when there is nothing.
qsizetype positionOfByte(QStringView text, qsizetype most) {
    qsizetype position = 0;
    for (qsizetype bytes = 0; position < text.size(); ++position)
        if ((bytes += utf8Bytes(text[position])) > most)
            break;
    return position;
}

/// Whether something went.
bool shortenText(QString& text) {
    qsizetype end = positionOfByte(text, DictationRecord::mostBytes);
    if (end == text.size())
        return false;
    if (text[end].isLowSurrogate() && text[end - 1].isHighSurrogate())
        --end;
    const qsizetype whole = Graphemes::isBoundary(text, end) ? end : Graphemes::previous(text, end);
    // A letter with marks without end is cut all the same.
    text = WhiteSpace::trimmed(QStringView(text).first(whole > 0 ? whole : end),
                               WhiteSpace::Set::whitespacesAndNewlines)
               .toString();
    return true;
}

} // namespace

QJsonObject DictationRecord::toJson() const {
    QJsonObject json{{u"id"_s, id.toString(QUuid::WithoutBraces).toUpper()},
                     {u"date"_s, date.toUTC().toString(Qt::ISODate)},
                     {u"appName"_s, appName},
                     {u"text"_s, text}};
    if (raw)
        json[u"raw"_s] = *raw;
    if (cut)
        json[u"cut"_s] = true;
    return json;
}

std::optional<DictationRecord> DictationRecord::fromJson(const QJsonObject& json) {
    for (const auto key : {"id"_L1, "date"_L1, "appName"_L1, "text"_L1})
        if (!json[key].isString())
            return std::nullopt;
    const QJsonValue rawValue = json["raw"_L1];
    if (!rawValue.isUndefined() && !rawValue.isNull() && !rawValue.isString())
        return std::nullopt;
    DictationRecord record{.id = QUuid::fromString(json["id"_L1].toString()),
                           .date = QDateTime::fromString(json["date"_L1].toString(), Qt::ISODate),
                           .appName = json["appName"_L1].toString(),
                           .text = json["text"_L1].toString(),
                           .raw = rawValue.isString() ? std::optional(rawValue.toString()) : std::nullopt,
                           .cut = json["cut"_L1].toBool()};
    return record.id.isNull() || !record.date.isValid() ? std::nullopt : std::optional(std::move(record));
}

void DictationRecord::shorten() {
    const bool isTextCut = shortenText(text);
    const bool isRawCut = raw && shortenText(*raw);
    cut = cut || isTextCut || isRawCut;
}

DictationRecordsEncoder::Entry DictationRecordsEncoder::entryOf(const DictationRecord& record,
                                                                const Known& known) {
    const auto entry = known.value(record.id);
    return entry.first == record ? entry : Entry{record, indented(record.toJson())};
}

qsizetype DictationRecordsEncoder::fitting(const QList<DictationRecord>& records, qsizetype most) {
    qsizetype bytes = QByteArrayView("[\n\n]\n").size();
    for (qsizetype count = 0; count < records.size(); ++count) {
        const auto entry = entryOf(records[count], known_);
        bytes += entry.second.size() + QByteArrayView(",\n").size();
        if (bytes >= most)
            return count;
        known_.insert(entry.first.id, entry);
    }
    return records.size();
}

QByteArray DictationRecordsEncoder::encode(const QList<DictationRecord>& records) {
    const auto before = std::exchange(known_, {});
    QByteArray text = "[\n";
    for (const DictationRecord& record : records) {
        auto entry = entryOf(record, before);
        text += known_.isEmpty() ? "" : ",\n";
        text += entry.second;
        known_.insert(record.id, std::move(entry));
    }
    text += records.isEmpty() ? "]\n" : "\n]\n";
    return text;
}

std::optional<QList<DictationRecord>> decodeDictationRecords(const QByteArray& json, qsizetype most) {
    const auto document = QJsonDocument::fromJson(json);
    if (!document.isArray() || document.array().size() > most)
        return std::nullopt;
    QList<DictationRecord> records;
    for (const QJsonValue entry : document.array()) {
        auto record = DictationRecord::fromJson(entry.toObject());
        if (!record)
            return std::nullopt;
        records.append(std::move(*record));
    }
    return records;
}

} // namespace velorin

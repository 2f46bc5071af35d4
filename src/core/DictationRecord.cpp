#include "core/DictationRecord.h"

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

} // namespace

QJsonObject DictationRecord::toJson() const {
    QJsonObject json{{u"id"_s, id.toString(QUuid::WithoutBraces).toUpper()},
                     {u"date"_s, date.toUTC().toString(Qt::ISODate)},
                     {u"appName"_s, appName},
                     {u"text"_s, text}};
    if (raw)
        json[u"raw"_s] = *raw;
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
                           .raw = rawValue.isString() ? std::optional(rawValue.toString()) : std::nullopt};
    return record.id.isNull() || !record.date.isValid() ? std::nullopt : std::optional(std::move(record));
}

QByteArray DictationRecordsEncoder::encode(const QList<DictationRecord>& records) {
    const auto before = std::exchange(known_, {});
    QByteArray text = "[\n";
    for (const DictationRecord& record : records) {
        auto entry = before.value(record.id);
        if (entry.first != record)
            entry = {record, indented(record.toJson())};
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

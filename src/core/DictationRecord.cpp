#include "core/DictationRecord.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

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

QByteArray encode(const QList<DictationRecord>& records) {
    QJsonArray array;
    for (const DictationRecord& record : records)
        array.append(record.toJson());
    return QJsonDocument(array).toJson(QJsonDocument::Indented);
}

std::optional<QList<DictationRecord>> decodeDictationRecords(const QByteArray& json) {
    const auto document = QJsonDocument::fromJson(json);
    if (!document.isArray())
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

/// One entry of the history. A value, with its JSON form.
#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace velorin {

struct DictationRecord {
    QUuid id;
    QDateTime date;
    QString appName;
    QString text;
    /// What the recogniser gave; absent in entries of older versions.
    std::optional<QString> raw;

    bool operator==(const DictationRecord&) const = default;

    [[nodiscard]] QJsonObject toJson() const;
    /// Nothing when a required key is missing or of another type.
    [[nodiscard]] static std::optional<DictationRecord> fromJson(const QJsonObject& json);
};

/// The list as the text of its file, newest first, and back. One unreadable record makes the whole
/// unreadable.
[[nodiscard]] QByteArray encode(const QList<DictationRecord>& records);
[[nodiscard]] std::optional<QList<DictationRecord>> decodeDictationRecords(const QByteArray& json);

} // namespace velorin

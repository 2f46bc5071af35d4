/// One entry of the history. A value, with its JSON form.
#pragma once

#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QUuid>

#include <limits>
#include <optional>
#include <utility>

namespace velorin {

struct DictationRecord {
    QUuid id;
    QDateTime date;
    QString appName;
    QString text;
    /// What the recogniser gave; absent in entries of older versions.
    std::optional<QString> raw;
    /// Whether something of the texts was cut off.
    bool cut = false;

    /// The most that either text holds, in bytes of UTF-8: a reply may have any length.
    static constexpr qsizetype mostBytes = 100'000;
    /// Cuts what is longer, between two characters.
    void shorten();

    bool operator==(const DictationRecord&) const = default;

    [[nodiscard]] QJsonObject toJson() const;
    /// Nothing when a required key is missing or of another type.
    [[nodiscard]] static std::optional<DictationRecord> fromJson(const QJsonObject& json);
};

/// The list as the text of its file, newest first. The list is written anew with each dictation: what was in
/// it the last time is not encoded once more.
class DictationRecordsEncoder final {
public:
    [[nodiscard]] QByteArray encode(const QList<DictationRecord>& records);

    /// How many of the newest make a text of fewer bytes than `most`.
    [[nodiscard]] qsizetype fitting(const QList<DictationRecord>& records, qsizetype most);

private:
    using Entry = std::pair<DictationRecord, QByteArray>;
    using Known = QHash<QUuid, Entry>;

    [[nodiscard]] static Entry entryOf(const DictationRecord& record, const Known& known);

    Known known_;
};

/// The list back from the text. One unreadable record makes the whole unreadable, and so do more than `most`,
/// before any is looked at.
[[nodiscard]] std::optional<QList<DictationRecord>>
decodeDictationRecords(const QByteArray& json, qsizetype most = std::numeric_limits<qsizetype>::max());

} // namespace velorin

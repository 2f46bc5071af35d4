#include "cleanup/Personalization.h"

#include "text/WhiteSpace.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

bool isBlank(QStringView text) {
    return WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).isEmpty();
}

bool isHexDigit(QChar c) {
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

/// 8-4-4-4-12 hexadecimal digits. QUuid alone would take braces, and say null for anything else.
std::optional<QUuid> uuidFrom(const QString& text) {
    if (text.size() != 36)
        return std::nullopt;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isHyphen = i == 8 || i == 13 || i == 18 || i == 23;
        if (isHyphen ? text[i] != u'-' : !isHexDigit(text[i]))
            return std::nullopt;
    }
    return QUuid::fromString(text);
}

std::optional<WordReplacement> entryFrom(const QJsonObject& object) {
    const QJsonValue id = object.value("id"_L1);
    const QJsonValue heard = object.value("heard"_L1);
    const QJsonValue replacement = object.value("replacement"_L1);
    if (!id.isString() || !heard.isString() || !replacement.isString())
        return std::nullopt;
    const std::optional<QUuid> uuid = uuidFrom(id.toString());
    if (!uuid)
        return std::nullopt;
    return WordReplacement{*uuid, heard.toString(), replacement.toString()};
}

} // namespace

bool WordReplacement::isUsable() const { return !isBlank(heard) && !isBlank(replacement); }

QByteArray wordReplacementsToJson(const QList<WordReplacement>& replacements) {
    QJsonArray array;
    for (const WordReplacement& entry : replacements) {
        array.append(QJsonObject{{u"id"_s, entry.id.toString(QUuid::WithoutBraces).toUpper()},
                                 {u"heard"_s, entry.heard},
                                 {u"replacement"_s, entry.replacement}});
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

std::optional<QList<WordReplacement>> wordReplacementsFromJson(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    QList<WordReplacement> replacements;
    for (const QJsonValue& value : document.array()) {
        const std::optional<WordReplacement> entry = entryFrom(value.toObject());
        if (!entry)
            return std::nullopt;
        replacements.append(*entry);
    }
    return replacements;
}

} // namespace velorin

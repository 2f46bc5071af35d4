/// What the user taught the program about single words: when this is heard, write that.
///
/// The list is stored as JSON, an array of objects with exactly the keys "id", "heard" and "replacement".
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUuid>

#include <optional>

namespace velorin {

struct WordReplacement {
    /// Identifies the entry within the list.
    QUuid id;
    /// What the recogniser produces.
    QString heard;
    /// What is to be written.
    QString replacement;

    /// Both texts hold more than white space.
    [[nodiscard]] bool isUsable() const;

    bool operator==(const WordReplacement&) const = default;
};

[[nodiscard]] QByteArray wordReplacementsToJson(const QList<WordReplacement>& replacements);

/// The list as a whole or not at all: nothing if one entry lacks a key or holds something else than text, or
/// an "id" that is no UUID.
[[nodiscard]] std::optional<QList<WordReplacement>> wordReplacementsFromJson(const QByteArray& json);

} // namespace velorin

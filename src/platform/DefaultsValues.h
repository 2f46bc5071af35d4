/// Reads typed values out of the preferences, forgiving what people and older versions wrote.
#pragma once

#include "platform/UserDefaults.h"

#include <QHash>
#include <QStringList>

namespace velorin::DefaultsValues {

/// Absent when the key is; any other value reads as a boolean: numbers other than 0 and texts such as
/// "YES", "true" and "1" are true.
[[nodiscard]] std::optional<bool> boolean(const UserDefaults& defaults, const QString& key);

/// A text, or a number's text.
[[nodiscard]] std::optional<QString> string(const UserDefaults& defaults, const QString& key);

/// 0 for what is absent or no number; fractions are cut off.
[[nodiscard]] qint64 integer(const UserDefaults& defaults, const QString& key);

/// Nothing unless it is a list of texts only.
[[nodiscard]] std::optional<QStringList> stringArray(const UserDefaults& defaults, const QString& key);

/// Nothing unless it is a map to texts only.
[[nodiscard]] std::optional<QHash<QString, QString>> stringMap(const UserDefaults& defaults,
                                                               const QString& key);

} // namespace velorin::DefaultsValues

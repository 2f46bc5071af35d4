/// Stands between the reply of a model that was asked to polish a text and its insertion.
///
/// Models sometimes answer a text instead of editing it, or write it anew. The guard compares the reply with
/// what was sent and says why it must be thrown away, in the order of its checks: "empty", "longer",
/// "new words", "dropped words", "answer opener", "question answered", "placeholder".
///
///     PolishGuard::rejection(u"Yes, we can.", u"can we meet")   // "answer opener"
///
/// Pure; any thread.
#pragma once

#include <QStringList>

#include <optional>

namespace velorin::PolishGuard {

/// Why the reply must not be used; nothing if it may. `original` is the text that the model received.
[[nodiscard]] std::optional<QString> rejection(QStringView polished, QStringView original);

/// The lower-cased words of a text: split at every code point that is no letter, mark or number, so also at
/// apostrophes and hyphens.
[[nodiscard]] QStringList words(QStringView text);

} // namespace velorin::PolishGuard

/// The cleanup done the slow and obvious way: each pass one pattern over the whole text, in its order.
///
/// It stands beside the pipeline that ships to say what is right. The two share the tables of data and
/// nothing else, and must give the same answer for any input.
#pragma once

#include "cleanup/Personalization.h"
#include "delivery/ContextProfile.h"

#include <QStringList>

#include <span>

namespace velorin::Reference {

[[nodiscard]] QString clean(QStringView raw, std::span<const WordReplacement> replacements,
                            ContextProfile profile);

[[nodiscard]] bool endsPunctuated(QStringView text);
[[nodiscard]] QString spokenPunctuation(const QString& text, ContextProfile profile);
[[nodiscard]] QString commandFlags(const QString& text);
[[nodiscard]] QString applyCodeSymbols(const QString& text);
[[nodiscard]] QString stripFillers(const QString& text);
[[nodiscard]] QString applyCorrections(const QString& text);
[[nodiscard]] QString applyReplacements(QStringView text, std::span<const WordReplacement> replacements);
[[nodiscard]] QString tidy(const QString& text, bool endsPunctuated, ContextProfile profile);

struct LayoutResult {
    QString text;
    bool hasChanged = false;
};

[[nodiscard]] LayoutResult applyLayoutCommands(QStringView text);
[[nodiscard]] QString normalizeLayout(QStringView text, bool capitalize);
[[nodiscard]] QStringList words(QStringView text);

} // namespace velorin::Reference

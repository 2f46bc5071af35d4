/// What a dictation comes to: the text that is kept and inserted, or why there is none.
#pragma once

#include "delivery/SelectionSnapshot.h"

#include <QString>

#include <optional>

namespace velorin {

struct Ending {
    QString text;
    QString raw;  ///< What it was made from: the recogniser's text, or the instruction.
    QString kind; ///< "dictation", "generate" or "edit".
    /// Why nothing is inserted, for the user. With a text, that is kept all the same.
    std::optional<QString> problem;
    /// The state word is not set back: the user was asked for something else than patience.
    bool keepsStatus = false;
    /// A provider wrote the text.
    bool isReply = false;
    /// Inserted only if this is selected still.
    std::optional<SelectionSnapshot> replaces;

    [[nodiscard]] bool isKept() const { return !problem || !text.isEmpty(); }
    /// A dictation is delivered however late; what answers an instruction is not put where the user no longer
    /// expects it.
    [[nodiscard]] bool isPlain() const { return kind == QStringLiteral("dictation"); }

    [[nodiscard]] static Ending plain(QString text, QString raw) {
        return {.text = std::move(text),
                .raw = std::move(raw),
                .kind = QStringLiteral("dictation"),
                .problem = {},
                .replaces = {}};
    }
};

} // namespace velorin

/// Which of the four ways a dictation ends in. A pure function of what was said and of the settings.
#pragma once

#include <QString>

#include <optional>

namespace velorin {

class AppState;
struct Dictation;

struct EndingChoice {
    enum class Kind {
        generate, ///< A trigger word was said, which wins over a selection.
        edit,
        polish, ///< Never where code is written.
        plain,
    };
    Kind kind = Kind::plain;
    QString instruction;            ///< For `generate` and `edit`.
    std::optional<QString> context; ///< For `generate`; none when it is still to be read.
    QString base;                   ///< For `polish` and `plain`: the text that the rules give.

    [[nodiscard]] static EndingChoice of(const Dictation& dictation, const AppState& settings,
                                         bool aiConfigured);
};

} // namespace velorin

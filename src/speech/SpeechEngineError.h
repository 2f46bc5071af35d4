/// A failure of speech capture, with words for the user.
#pragma once

#include <QString>

namespace velorin {

struct SpeechEngineError {
    enum class Kind {
        unsupportedLocale, ///< `detail` is the locale's identifier.
        engineFailed,      ///< The microphone could not be started or was lost; `detail` says why.
        micDenied,
        noInputDevice,
        noAudioFormat,
        platform, ///< A failure of the recogniser, whose own sentence `detail` is.
    };

    Kind kind = Kind::platform;
    QString detail;

    /// A full sentence, translated.
    [[nodiscard]] QString description() const;

    bool operator==(const SpeechEngineError&) const = default;
};

} // namespace velorin

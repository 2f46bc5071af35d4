#include "speech/SpeechEngineError.h"

#include <QCoreApplication>

namespace velorin {

namespace {

QString tr(const char* text) { return QCoreApplication::translate("SpeechEngineError", text); }

} // namespace

QString SpeechEngineError::description() const {
    switch (kind) {
    case Kind::unsupportedLocale:
        return tr("Speech recognition is not available for locale %1 on this Mac.").arg(detail);
    case Kind::engineFailed:
        return tr("Audio engine failed: %1").arg(detail);
    case Kind::micDenied:
        return tr(
            "Microphone access was denied. Enable it in System Settings > Privacy & Security > Microphone.");
    case Kind::noInputDevice:
        return tr("No audio input device is available.");
    case Kind::noAudioFormat:
        return tr("Could not negotiate a compatible audio format with the speech analyzer.");
    case Kind::platform:
        break;
    }
    return detail;
}

} // namespace velorin

/// One dictation, from the press that began it to the delivery of its text: where it is to go, what was
/// heard, and how far it has come.
///
/// Several may be alive at once, each with its own: while the last words of one are being recognised, or a
/// provider thinks about it, the next one may be listening. The model's fields show the newest. Main thread.
#pragma once

#include "core/PassingFile.h"
#include "delivery/ContextProfile.h"
#include "delivery/SelectionSnapshot.h"
#include "platform/Gate.h"
#include "platform/LatencyMarks.h"
#include "platform/Listeners.h"
#include "platform/RunningApplication.h"
#include "shortcuts/DictationShortcutSessionController.h"
#include "speech/RecordingWriter.h"

#include <QString>

#include <memory>
#include <optional>

namespace velorin {

struct Dictation {
    /// In the order in which it passes through them; a launch that fails goes to the end at once.
    enum class State {
        launching, ///< The microphone is being opened.
        listening,
        draining,  ///< The key came up; the last words are being recognised.
        finishing, ///< The text is made ready, perhaps by a provider, and delivered.
        ended,
    };

    qint64 generation = 0;
    LatencyMarks::Number marks = 0;
    State state = State::launching;
    /// The shortcut that was down when it was begun; none for the menu.
    std::optional<RecordingTriggerMode> launchMode;
    /// The shortcut was let go of before the microphone was open.
    bool isToStop = false;

    // Read at its start.
    std::optional<RunningApplication> target;
    ContextProfile profile = ContextProfile::generic;
    std::optional<SelectionSnapshot> selection;
    std::optional<QString> context; ///< The text around the cursor, where nothing was selected.
    bool isEdit = false;            ///< It will rewrite the selection.
    bool isForProvider = false;     ///< Its sound is recorded for a provider.
    Subscription longest;           ///< Ends it when it has gone on for too long.

    // What was heard.
    QString finalizedText;
    QString volatileText;
    std::optional<PassingFile> recording;
    std::optional<RecordingWriter::Loss> recordingLoss; ///< Why it is not whole.
    [[nodiscard]] QString transcript() const { return finalizedText + volatileText; }

    /// A newer dictation has begun: nothing that takes long is waited for any more.
    bool isOvertaken = false;
    Listeners overtaking; ///< Told once, when that becomes true.
    /// The screen was locked before it was delivered: whatever is in front then, or later, gets nothing.
    bool isWithheld = false;
    /// Its call to close the microphone has been made: whoever comes next may ask for it.
    Gate hasClosed{false};
    /// All that was dictated before it has been delivered.
    Gate turn{false};
};

using SharedDictation = std::shared_ptr<Dictation>;

} // namespace velorin

/// A dictation from the shortcut or the menu to the delivered text, step by step.
///
/// All on the main thread: start() and stop() are tasks that interleave at their waits only, and several may
/// be alive at once. Each works for a dictation of its own (Dictation.h) and shows it in the model's fields
/// only while it is the newest. What was said is delivered once, in the order in which it was spoken
/// (DictationLine.h), whatever begins meanwhile.
#pragma once

#include "core/DictationLine.h"
#include "core/Ending.h"
#include "core/EndingChoice.h"
#include "core/FinishingOperations.h"
#include "speech/SpeechEngineError.h"

#include <QCoro/QCoroTask>
#include <QString>

#include <optional>
#include <tl/expected.hpp>

namespace velorin {

class AppModel;
struct DictationServices;

class DictationSession final {
public:
    DictationSession(AppModel& model, DictationServices& services);
    /// What still waits is never resumed; recordings go.
    ~DictationSession();

    /// An edge of the shortcuts.
    void handleShortcutEvent(ShortcutEvent event);
    /// The menu's item: starts, or stops what is recording. Leaves the shortcuts' mode alone.
    void toggleDictation();

    QCoro::Task<> start();
    QCoro::Task<> stop();

    /// Recomputes the live preview from the whole transcript.
    void refreshCleaned();

    void pushLevel(float value);
    void contextModeChanged();

    /// Nothing is listened to, recognised or delivered.
    [[nodiscard]] bool isIdle() const { return line_.isEmpty(); }
    [[nodiscard]] const DictationShortcutSessionController& shortcutSession() const {
        return shortcutSession_;
    }

private:
    void perform(const DictationShortcutAction& action);
    void sessionChanged();
    void endForced();
    void beginSession();
    [[nodiscard]] SharedDictation launching() const;

    // The start, in the order of its steps.
    void aim(Dictation& dictation);
    void resolveContextProfile(Dictation& dictation);
    QCoro::Task<> readSurroundings(SharedDictation dictation);
    void resetTranscript();
    QCoro::Task<tl::expected<void, SpeechEngineError>> openMicrophone(SharedDictation dictation);
    QCoro::Task<tl::expected<void, SpeechEngineError>> openMicrophoneFirst(SharedDictation dictation);
    void prepareEngine(const SharedDictation& dictation);
    void enterListening(Dictation& dictation);
    void endUnheard(Dictation& dictation);
    void failToStart(Dictation& dictation, const QString& description);

    // The stop, likewise.
    QCoro::Task<> end(SharedDictation dictation);
    QCoro::Task<> takeProvidersTranscript(SharedDictation dictation);
    QCoro::Task<Ending> endingOf(SharedDictation dictation);
    QCoro::Task<> conclude(SharedDictation dictation, Ending ending);
    void keep(const Dictation& dictation, const Ending& ending);
    void deliver(const Dictation& dictation, const Ending& ending);
    void setAside(const Ending& ending, const QString& reason);
    [[nodiscard]] QString selectionChanged() const;
    [[nodiscard]] bool isTerminal(const Dictation& dictation) const;
    [[nodiscard]] Ending cleared(const Dictation& dictation, Ending ending) const;
    void showEnd(const Dictation& dictation, const Ending& ending);
    void hideUnlessNeeded();

    [[nodiscard]] FinishingOperations::Asking asking(const SharedDictation& dictation);
    void showProcessing(Dictation& dictation, AIProcessing processing);
    void hear(Dictation& dictation, const QString& text, bool isFinal);
    [[nodiscard]] bool isNewest(const Dictation& dictation) const { return newest_.get() == &dictation; }
    [[nodiscard]] bool isAnotherApplication(const Dictation& dictation) const;

    AppModel& model_;
    DictationServices& services_;
    DictationShortcutSessionController shortcutSession_;
    DictationLine line_;
    SharedDictation newest_; ///< Which the model shows; also after its end.
    SharedDictation asked_;  ///< Asked for last; not shown before the microphone is granted.
    bool isOverlayUp_ = false;
    Subscription watching_;
};

} // namespace velorin

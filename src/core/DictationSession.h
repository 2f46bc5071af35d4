/// A dictation from the shortcut or the menu to the delivered text, step by step.
///
/// All on the main thread: start() and stop() are tasks that interleave at their waits only, and several may
/// be alive at once. After each wait the model is read anew. The model's session generation, counted up by
/// each launched session, is what tells a late result from a current one; no task is ever cancelled for it.
#pragma once

#include "platform/RunningApplication.h"
#include "shortcuts/DictationShortcutSessionController.h"

#include <QCoro/QCoroTask>
#include <QString>

#include <optional>

namespace velorin {

class AppModel;
struct DictationServices;

class DictationSession final {
public:
    DictationSession(AppModel& model, DictationServices& services);

    /// An edge of the shortcuts.
    void handleShortcutEvent(ShortcutEvent event);
    /// The menu's item: starts, or stops what is recording. Leaves the shortcuts' mode alone.
    void toggleDictation();

    QCoro::Task<> start();
    QCoro::Task<> stop();

    /// The common end of a plain dictation: keeps the text, then delivers it.
    void finishDictation(const QString& cleaned, const QString& raw);

    /// Recomputes the live preview from the whole transcript.
    void refreshCleaned();
    /// What a plain dictation would deliver now.
    [[nodiscard]] QString cleanedTextForCurrentMode() const;

    void pushLevel(float value);
    void resolveContextProfile(const std::optional<RunningApplication>& application);
    void contextModeChanged();

    [[nodiscard]] const DictationShortcutSessionController& shortcutSession() const {
        return shortcutSession_;
    }

private:
    void perform(const DictationShortcutAction& action);
    void beginSession();
    QCoro::Task<> readSurroundings();
    void resetTranscript();
    void installEngineCallbacks();
    void enterListening();
    void failToStart(const QString& description);
    QCoro::Task<> finish(qint64 generation);
    [[nodiscard]] bool targetIsAnotherApplication() const;
    [[nodiscard]] QString joinedTranscript() const;

    AppModel& model_;
    DictationServices& services_;
    DictationShortcutSessionController shortcutSession_;
};

} // namespace velorin

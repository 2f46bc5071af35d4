/// An application model over fakes of every port, and the hands of a user: keys, menu, speech.
///
///     ModelDesk desk;
///     desk.start();
///     desk.dictate(u"hello"_s);
#pragma once

#include "core/AppModel.h"
#include "platform/Platform.h"
#include "shortcuts/ShortcutBackend.h"
#include "tests/core/FakeSeams.h"
#include "tests/support/FakeAccessibility.h"
#include "tests/support/FakeApplicationFolders.h"
#include "tests/support/FakeAudioConverter.h"
#include "tests/support/FakeAudioFiles.h"
#include "tests/support/FakeAudioInput.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeEventTap.h"
#include "tests/support/FakeHttpSession.h"
#include "tests/support/FakeLanguageModel.h"
#include "tests/support/FakePasteboard.h"
#include "tests/support/FakeSecretStore.h"
#include "tests/support/FakeSessionWatch.h"
#include "tests/support/FakeSpeechRecognition.h"
#include "tests/support/FakeSyntheticKeyboard.h"
#include "tests/support/FakeTrust.h"
#include "tests/support/FakeUserAccount.h"
#include "tests/support/FakeUserDefaults.h"
#include "tests/support/FakeWorkspace.h"
#include "tests/support/WaitUntil.h"

#include <QTemporaryDir>

#include <memory>

namespace velorin {

struct ModelDesk {
    ModelDesk();
    ~ModelDesk();
    ModelDesk(const ModelDesk&) = delete;
    ModelDesk& operator=(const ModelDesk&) = delete;

    static RunningApplication editor();

    AppModel& start();
    /// With the model's own flows, which ask the provider over the fake connections.
    AppModel& startWithFlows();

    /// Lets everything that waits run to its end, then destroys the model.
    void endModel();
    void openGates();
    static void settle();
    /// Until no task of the model is left, also none on another thread; false when one never ends.
    bool waitUntilSettled() const;

    // The user's hands.
    void edge(ShortcutEvent event);
    void pressHold() { edge(ShortcutEvent::holdActivated); }
    void releaseHold() { edge(ShortcutEvent::holdDeactivated); }
    void tapToggle();
    void chooseMenuItem();
    void hear(const QString& text, bool isFinal);
    /// One buffer as the microphone gives it.
    AudioBuffer someSound() const;
    /// A whole dictation by the hold key.
    void dictate(const QString& text);

    QTemporaryDir home;
    FakeClock clock;
    FakeUserDefaults defaults;
    FakeApplicationFolders folders;
    FakeSecretStore secrets;
    FakeTrust trust;
    FakeEventTap tap;
    FakeSyntheticKeyboard keyboard;
    FakePasteboard pasteboard;
    FakeWorkspace workspace;
    FakeAccessibility accessibility;
    FakeLanguageModel languageModel;
    FakeAudioInput audioInput;
    FakeAudioConverters converters;
    FakeAudioFiles audioFiles;
    FakeSpeechRecognition recognition;
    LatencyMarks marks;
    FakeHttpSession chatSession;
    FakeHttpSession transcriptionSession;
    FakeUserAccount userAccount;
    FakeSessionWatch sessionWatch;
    FakeOverlay hud;
    Platform platform{
        clock,       defaults,    folders,     secrets,       trust,         tap,
        keyboard,    pasteboard,  workspace,   accessibility, languageModel, audioInput,
        converters,  audioFiles,  recognition, marks,         chatSession,   transcriptionSession,
        userAccount, sessionWatch};
    FakeFinishing* finishing = nullptr;
    FakeSelection* selection = nullptr;
    std::unique_ptr<AppModel> model;

private:
    AppModel& start(std::unique_ptr<FakeFinishing> newFinishing);
};

} // namespace velorin

/// Everything that stands behind the ports on this desktop, made once and handed to the model as a Platform.
#pragma once

#include "platform/Platform.h"
#include "platform/linux/account/PasswdAccount.h"
#include "platform/linux/atspi/AtspiAccessibility.h"
#include "platform/linux/desktop/BusSessionWatch.h"
#include "platform/linux/desktop/JsonUserDefaults.h"
#include "platform/linux/desktop/NoLanguageModel.h"
#include "platform/linux/desktop/XdgFolders.h"
#include "platform/linux/network/QtHttpSession.h"
#include "platform/linux/pulse/PulseAudioInput.h"
#include "platform/linux/recognition/SherpaRecognition.h"
#include "platform/linux/secrets/LibSecretStore.h"
#include "platform/linux/sound/SndfileWriter.h"
#include "platform/linux/sound/SoxrConverter.h"
#include "platform/linux/x11/X11EventTap.h"
#include "platform/linux/x11/X11Pasteboard.h"
#include "platform/linux/x11/X11Session.h"
#include "platform/linux/x11/X11Windows.h"
#include "platform/linux/x11/XTestSyntheticKeyboard.h"

#include <functional>

namespace velorin {

/// A plain desktop has no prompt for the microphone: one that is missing is told as what it is.
class SessionTrust final : public Trust {
public:
    [[nodiscard]] bool isProcessTrusted() const override { return session_.letsUsWatchAndPostKeys(); }
    [[nodiscard]] bool isMicrophoneAuthorized() const override { return true; }
    [[nodiscard]] QCoro::Task<bool> requestMicrophone() override { co_return true; }

private:
    mutable X11Session session_;
};

/// The windows of the X session and what the desktop opens, as one workspace.
class SessionWorkspace final : public Workspace {
public:
    /// `giveUpName` lets a newcomer be the first instance.
    explicit SessionWorkspace(std::function<void()> giveUpName) : giveUpName_(std::move(giveUpName)) {}

    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() override;
    [[nodiscard]] bool isCurrent(const RunningApplication& application) const override;
    void activate(const RunningApplication& application) override;
    [[nodiscard]] bool awaitFrontmost(const RunningApplication& application,
                                      std::chrono::milliseconds deadline) override;
    [[nodiscard]] std::optional<QString> windowTitle(const RunningApplication& application) override;
    [[nodiscard]] bool insertIntoOwnWindow(const QString& text) override;
    void revealFile(const QString& path) override;
    void openUrl(const QUrl& url) override;
    void relaunch() override;

private:
    X11Windows windows_;
    std::function<void()> giveUpName_;
};

class Adapters final {
public:
    Adapters(Clock& clock, std::function<void()> giveUpName);

    [[nodiscard]] Platform& platform() { return platform_; }

private:
    Clock& clock_;
    LatencyMarks marks_; // before all whose threads mark stages: it goes after them
    JsonUserDefaults userDefaults_{JsonUserDefaults::defaultPath()};
    XdgFolders folders_;
    // Its end may wait for a model that is being loaded: keyboard and clipboard are let go of before.
    SherpaRecognition recognition_{clock_, ModelStore::programFolders(),
                                   folders_.dataFolder() + QStringLiteral("/models")};
    LibSecretStore secrets_;
    SessionTrust trust_;
    SharedKeyState keyState_;
    X11EventTap eventTap_{keyState_};
    XTestSyntheticKeyboard keyboard_{keyState_};
    X11Pasteboard pasteboard_;
    SessionWorkspace workspace_;
    AtspiAccessibility accessibility_;
    NoLanguageModel languageModel_;
    PulseAudioInput audioInput_;
    SoxrConverterFactory audioConverters_;
    SndfileFactory audioFiles_;
    QtHttpSession chatSession_{clock_, QtHttpSession::chat};
    QtHttpSession transcriptionSession_{clock_, QtHttpSession::transcription};
    PasswdAccount userAccount_;
    BusSessionWatch sessionWatch_;
    Platform platform_;
};

} // namespace velorin

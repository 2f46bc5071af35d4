#include "core/AppModel.h"

#include "ai/AIService.h"
#include "core/AIReadiness.h"
#include "core/AISettings.h"
#include "core/CaptureLog.h"
#include "core/CleanedTranscript.h"
#include "core/DictationServices.h"
#include "core/DictationSession.h"
#include "core/FinishingFlows.h"
#include "core/GenerateTrigger.h"
#include "core/History.h"
#include "core/InsertionRouter.h"
#include "core/MainTasks.h"
#include "core/OverlayPreview.h"
#include "core/Permissions.h"
#include "core/Preferences.h"
#include "delivery/AXInsertService.h"
#include "delivery/PasteService.h"
#include "delivery/TypingService.h"
#include "platform/Platform.h"
#include "shortcuts/ShortcutBackend.h"
#include "speech/SpeechEngine.h"
#include "text/CaseMapping.h"
#include "text/WhiteSpace.h"

#include <QPointer>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

/// Destroyed from the last to the first: the tasks go before everything that they use.
struct AppModel::Collaborators {
    Collaborators(AppModel& model, Platform& desktop, Seams given)
        : platform(desktop), seams(std::move(given)),
          engine(desktop.audioInput, desktop.recognition, desktop.audioConverters, desktop.audioFiles,
                 desktop.folders, desktop.marks),
          shortcuts(desktop.eventTap, desktop.clock),
          accessibility(desktop.accessibility, desktop.trust, desktop.clock),
          typing(desktop.keyboard, desktop.trust),
          paste(desktop.pasteboard, desktop.keyboard, desktop.trust, desktop.clock),
          selections(desktop.accessibility, desktop.workspace, paste, desktop.trust, desktop.clock),
          liveSelection(selections), aiSettings(model, desktop.secrets),
          preferences(model, desktop.userDefaults, [this] { return aiSettings.hasLegacyKey(); }),
          history(model, desktop.folders, desktop.clock), captureLog(model, desktop),
          permissions(model, desktop, shortcuts), router(model, desktop, accessibility, typing, paste),
          preview(model, desktop, seams.hud),
          ai(desktop.chatSession, desktop.transcriptionSession, desktop.languageModel, desktop.userAccount),
          selection(seams.selection ? *seams.selection : static_cast<SelectionOperations&>(liveSelection)),
          flows(model, {ai, aiSettings, desktop.languageModel, tasks}),
          services{desktop,   engine,     seams.finishing ? *seams.finishing : flows,
                   selection, seams.hud,  preview,
                   history,   captureLog, router,
                   tasks},
          session(model, services) {}

    Platform& platform;
    Seams seams;
    SpeechEngine engine;
    ShortcutBackend shortcuts;
    AXInsertService accessibility;
    TypingService typing;
    PasteService paste;
    SelectionService selections;
    LiveSelection liveSelection;
    AISettings aiSettings;
    Preferences preferences;
    History history;
    CaptureLog captureLog;
    Permissions permissions;
    InsertionRouter router;
    OverlayPreview preview;
    AIService ai;
    SelectionOperations& selection;
    FinishingFlows flows;
    DictationServices services;
    DictationSession session;
    MainTasks tasks;
};

AppModel::AppModel(Platform& platform, Seams seams)
    : parts_(std::make_unique<Collaborators>(*this, platform, std::move(seams))) {
    parts_->preferences.load();
    migrateLegacyKey();
    refreshAIKeyState();
    parts_->history.load();
    parts_->captureLog.open();
    wireAIReadiness();
    wireSecrets();
    wireShortcuts();
    applyActivation();
    refreshPermissions();
}

AppModel::~AppModel() = default;

void AppModel::wireShortcuts() {
    const QPointer<AppModel> weak = this;
    parts_->shortcuts.onEvent = [weak](ShortcutEvent event) {
        if (weak)
            weak->handleShortcutEvent(event);
    };
    parts_->shortcuts.onTapUnavailable = [weak](const QString& message) {
        if (!weak)
            return;
        weak->setErrorMessage(message);
        weak->refreshPermissions();
    };
    parts_->shortcuts.onTapStatusChanged = [weak](bool active) {
        if (!weak)
            return;
        weak->setAccessibilityGranted(weak->parts_->platform.trust.isProcessTrusted());
        if (active)
            weak->setErrorMessage(std::nullopt);
    };
    parts_->accessibility.onUnverifiedInsert = [weak](const QString& text) {
        if (!weak)
            return;
        weak->setUndeliveredText(text);
        weak->setErrorMessage(
            tr("Text may not have reached the app — it's in the transcript above if you need Copy."));
    };
    parts_->paste.onUnverifiedPaste = parts_->accessibility.onUnverifiedInsert;
}

void AppModel::migrateLegacyKey() {
    parts_->aiSettings.migrateLegacyKey(
        aiProvider() != AIProvider::apple ? aiProvider() : parts_->preferences.inferAIProvider());
}

void AppModel::wireSecrets() {
    const QPointer<AppModel> weak = this;
    parts_->platform.secrets.setOnChanged([weak] {
        if (!weak)
            return;
        weak->migrateLegacyKey();
        weak->refreshAIKeyState();
    });
}

void AppModel::wireAIReadiness() {
    for (const auto signal :
         {&AppState::aiProviderChanged, &AppState::aiEndpointChanged, &AppState::aiModelChanged,
          &AppState::aiKeyConfiguredChanged, &AppState::aiEnabledChanged, &AppState::aiPolishEnabledChanged,
          &AppState::aiGenerateEnabledChanged, &AppState::aiTranscriptionEnabledChanged,
          &AppState::aiTranscriptionModelChanged})
        connect(this, signal, this, &AppModel::aiReadinessChanged);
}

void AppModel::handleShortcutEvent(ShortcutEvent event) { parts_->session.handleShortcutEvent(event); }
void AppModel::toggleDictation() { parts_->session.toggleDictation(); }
QCoro::Task<> AppModel::start() { return parts_->session.start(); }
QCoro::Task<> AppModel::stop() { return parts_->session.stop(); }
void AppModel::refreshCleaned() { parts_->session.refreshCleaned(); }
QString AppModel::cleanedTextForCurrentMode() const {
    return cleanedTranscript(finalizedText() + volatileText(), *this, activeProfile());
}
void AppModel::pushLevel(float value) { parts_->session.pushLevel(value); }
void AppModel::contextModeChanged() { parts_->session.contextModeChanged(); }
void AppModel::previewOverlay() {
    if (parts_->session.isIdle())
        parts_->preview.show();
}
const DictationShortcutSessionController& AppModel::shortcutSession() const {
    return parts_->session.shortcutSession();
}
bool AppModel::isSettled() const { return parts_->tasks.isIdle() && parts_->captureLog.isSettled(); }

bool AppModel::insertText(const QString& text, const std::optional<RunningApplication>& target) {
    return parts_->router.insertText(text, target);
}
void AppModel::pasteAgain() { parts_->router.pasteAgain(); }

void AppModel::recordHistory(const QString& raw, const QString& cleaned) {
    parts_->history.record(raw, cleaned, targetApp());
}
void AppModel::deleteHistory(const DictationRecord& record) { parts_->history.remove(record); }
void AppModel::clearHistory() { parts_->history.clear(); }
void AppModel::captureDictation(const QString& raw, const QString& cleaned, const QString& kind) {
    parts_->captureLog.capture(raw, cleaned, kind, targetApp());
    parts_->captureLog.countLater();
}
void AppModel::refreshCaptureStatus() { parts_->captureLog.refreshStatus(); }
void AppModel::revealCaptureFile() { parts_->captureLog.reveal(); }
void AppModel::clearCaptureFile() { parts_->captureLog.clear(); }

void AppModel::persistPreferences() { parts_->preferences.persist(); }

void AppModel::completeOnboarding() {
    setOnboardingCompleted(true);
    persistPreferences();
}

void AppModel::addVocabulary(const QString& word) {
    const QString trimmed = WhiteSpace::trimmed(word, WhiteSpace::Set::whitespacesAndNewlines).toString();
    const auto isListed = [&trimmed](const QString& entry) {
        return CaseMapping::equalIgnoringCase(entry, trimmed);
    };
    if (trimmed.isEmpty() || std::ranges::any_of(customVocabulary(), isListed))
        return;
    changeCustomVocabulary([&trimmed](QStringList& words) { words.append(trimmed); });
    persistPreferences();
}

void AppModel::removeVocabulary(const QString& word) {
    changeCustomVocabulary([&word](QStringList& words) { words.removeAll(word); });
    persistPreferences();
}

bool AppModel::addReplacement(const QString& heard, const QString& replacement) {
    const WordReplacement entry{.id = QUuid::createUuid(), .heard = heard, .replacement = replacement};
    if (!entry.isUsable())
        return false;
    changeWordReplacements([&entry](QList<WordReplacement>& list) { list.append(entry); });
    persistPreferences();
    refreshCleaned();
    return true;
}

void AppModel::removeReplacement(const QUuid& id) {
    changeWordReplacements([&id](QList<WordReplacement>& list) {
        list.removeIf([&id](const WordReplacement& entry) { return entry.id == id; });
    });
    persistPreferences();
    refreshCleaned();
}

void AppModel::refreshPermissions() { parts_->permissions.refresh(); }
void AppModel::applyActivation() { parts_->permissions.applyActivation(); }
void AppModel::relaunch() { parts_->permissions.relaunch(); }
ShortcutBackend& AppModel::shortcuts() { return parts_->shortcuts; }

bool AppModel::aiConfigured() const { return parts_->services.finishing.aiConfigured(); }
bool AppModel::aiRunsOnDevice() const { return AIReadiness::runsOnDevice(*this); }
bool AppModel::providerTranscriptionActive() const {
    return parts_->services.finishing.providerTranscriptionActive();
}
bool AppModel::aiReady() const {
    return AIReadiness::isReady(*this, parts_->platform.languageModel.isAvailable());
}
std::optional<AIConfiguration> AppModel::aiConfiguration() const {
    return parts_->aiSettings.configuration(parts_->platform.languageModel.isAvailable());
}
QString AppModel::appleIntelligenceAvailabilityDescription() const {
    return parts_->ai.appleIntelligenceAvailabilityDescription();
}
QCoro::Task<QString> AppModel::testAIConnection() { return parts_->flows.testAIConnection(); }
QString AppModel::generateTriggerDisplay() const { return GenerateTrigger::display(aiGenerateTrigger()); }
void AppModel::selectAIProvider(AIProvider provider) { parts_->aiSettings.selectProvider(provider); }
bool AppModel::saveAIKey(const QString& key) { return parts_->aiSettings.saveKey(key); }
void AppModel::refreshAIKeyState() { parts_->aiSettings.refreshKeyState(); }

void AppModel::storeProviderConfig() {
    changeAIProviderConfigs([this](AIProviderConfigs& configs) {
        configs.insert(rawString(aiProvider()), {aiEndpoint(), aiModel()});
    });
}

void AppModel::storeTranscriptionModel() {
    changeAITranscriptionModels([this](AITranscriptionModels& models) {
        models.insert(rawString(aiProvider()), aiTranscriptionModel());
    });
}

} // namespace velorin

#include "core/DictationSession.h"

#include "cleanup/RuleCleaner.h"
#include "core/AppModel.h"
#include "core/DictationServices.h"
#include "core/GenerateTrigger.h"
#include "delivery/ContextDetector.h"
#include "platform/Log.h"
#include "text/Graphemes.h"
#include "text/WhiteSpace.h"

#include <QCoreApplication>
#include <QFile>
#include <QPointer>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QString bundleName(const std::optional<RunningApplication>& application) {
    return application ? application->bundleIdentifier.value_or(u"nil"_s) : u"nil"_s;
}

QString boolName(bool value) { return value ? u"true"_s : u"false"_s; }

QString descriptions(const std::vector<DictationShortcutAction>& actions) {
    QStringList names;
    for (const auto& action : actions)
        names.append(action.description());
    return names.join(u", "_s);
}

} // namespace

DictationSession::DictationSession(AppModel& model, DictationServices& services)
    : model_(model), services_(services) {}

void DictationSession::handleShortcutEvent(ShortcutEvent event) {
    if (event == ShortcutEvent::copyAgainTriggered) {
        qCInfo(shortcutLog).noquote() << u"event copyAgainTriggered -> paste again"_s;
        model_.pasteAgain();
        return;
    }
    const auto actions = shortcutSession_.handle(event);
    qCInfo(shortcutLog).noquote() << u"event %1 -> %2"_s.arg(name(event), descriptions(actions));
    for (const auto& action : actions)
        perform(action);
}

void DictationSession::perform(const DictationShortcutAction& action) {
    switch (action.kind) {
    case DictationShortcutAction::Kind::stop:
        services_.platform.marks.mark(Stage::keyUp);
        qCInfo(shortcutLog).noquote() << u"dictation stop"_s;
        services_.tasks.launch(stop());
        break;
    case DictationShortcutAction::Kind::switchedToToggle:
        qCInfo(shortcutLog).noquote() << u"latched into toggle mode"_s;
        break;
    case DictationShortcutAction::Kind::start:
        qCInfo(shortcutLog).noquote() << u"dictation start (%1)"_s.arg(rawString(*action.mode));
        if (!model_.isRecording())
            beginSession();
        break;
    }
}

void DictationSession::beginSession() {
    services_.platform.marks.begin();
    services_.tasks.launch(start());
}

void DictationSession::toggleDictation() {
    if (model_.isRecording()) {
        services_.platform.marks.mark(Stage::keyUp);
        services_.tasks.launch(stop());
    } else {
        beginSession();
    }
}

QCoro::Task<> DictationSession::start() {
    if (model_.isRecording())
        co_return;
    model_.setErrorMessage(std::nullopt);
    // Read before the first wait: it tells whether a shortcut was down when this launch began.
    const auto launchMode = shortcutSession_.activeMode;
    const bool granted = co_await services_.platform.trust.requestMicrophone();
    model_.setMicrophoneGranted(granted);
    if (!granted) {
        model_.setErrorMessage(
            AppModel::tr("Microphone access denied. Enable it in System Settings > Privacy & "
                         "Security > Microphone, then relaunch."));
        co_return;
    }
    model_.setSessionGeneration(model_.sessionGeneration() + 1);
    model_.setTargetApp(services_.platform.workspace.frontmostApplication());
    resolveContextProfile(model_.targetApp());
    co_await readSurroundings();
    resetTranscript();
    installEngineCallbacks();
    services_.engine.contextualStrings = model_.customVocabulary();
    model_.setRemoteTranscriptionThisSession(services_.finishing.providerTranscriptionActive());
    services_.engine.recordsAudio = model_.remoteTranscriptionThisSession();
    const auto started = co_await services_.engine.start(rawString(model_.language()));
    if (!started) {
        failToStart(started.error().description());
        co_return;
    }
    enterListening();
    if (launchMode && !shortcutSession_.activeMode) {
        qCInfo(shortcutLog).noquote() << u"session ended during launch -> stopping"_s;
        co_await stop();
    }
}

bool DictationSession::targetIsAnotherApplication() const {
    const auto target = model_.targetApp();
    return target && !services_.platform.workspace.isCurrent(*target);
}

QCoro::Task<> DictationSession::readSurroundings() {
    model_.setPendingSelection(std::nullopt);
    model_.setPendingContext(std::nullopt);
    model_.setIsEditSession(false);
    model_.setIsGenerateSession(false);
    model_.setAIProcessing(std::nullopt);
    const auto& finishing = services_.finishing;
    if (finishing.aiConfigured() && (model_.aiEnabled() || model_.aiGenerateEnabled()) &&
        targetIsAnotherApplication()) {
        model_.setPendingSelection(co_await services_.selection.snapshot(*model_.targetApp()));
        const auto selection = model_.pendingSelection();
        model_.setIsEditSession(model_.aiEnabled() && finishing.aiConfigured() && selection);
        if (selection)
            qCInfo(aiLog).noquote() << u"selection captured: app=%1 selection=%2 chars edit=%3"_s.arg(
                bundleName(model_.targetApp()), QString::number(Graphemes::count(selection->text)),
                boolName(model_.isEditSession()));
    }
    if (model_.aiGenerateEnabled() && finishing.aiConfigured() && !model_.pendingSelection() &&
        targetIsAnotherApplication())
        model_.setPendingContext(services_.selection.contextText());
}

void DictationSession::resetTranscript() {
    model_.setFinalizedText({});
    model_.setVolatileText({});
    model_.setCleanedText({});
    model_.setLevel(0);
    model_.setLevels({});
}

void DictationSession::installEngineCallbacks() {
    auto& engine = services_.engine;
    const QPointer<AppModel> weak = &model_;
    engine.onResult = [weak](const QString& text, bool isFinal) {
        if (!weak)
            return;
        if (isFinal) {
            weak->setFinalizedText(weak->finalizedText() + text);
            weak->setVolatileText({});
        } else {
            weak->setVolatileText(text);
        }
        weak->refreshCleaned();
    };
    engine.onError = [weak](const SpeechEngineError& error) {
        if (weak)
            weak->setErrorMessage(error.description());
        if (weak)
            weak->setStatus(u"Error"_s);
        if (weak)
            weak->setOverlayPhase(OverlayPhase::error);
    };
    engine.onStatus = [weak](const QString& text) {
        if (weak)
            weak->setStatus(text);
    };
    // Arrives on the audio thread; the engine ends that before the model goes.
    // The audio thread may outlive the model by a buffer: only the main thread looks whether it is there.
    engine.onAudioLevel = [model = QPointer<AppModel>(&model_)](float value) {
        const auto push = [model, value] {
            if (model)
                model->pushLevel(value);
        };
        QMetaObject::invokeMethod(QCoreApplication::instance(), push, Qt::QueuedConnection);
    };
}

void DictationSession::enterListening() {
    model_.setIsRecording(true);
    model_.setStatus(u"Listening…"_s);
    model_.setRecordingStartedAt(services_.platform.clock.now());
    model_.setOverlayPhase(OverlayPhase::listening);
    services_.hud.show(model_);
    qCInfo(shortcutLog).noquote() << u"engine listening"_s;
}

void DictationSession::failToStart(const QString& description) {
    qCCritical(shortcutLog).noquote() << u"engine start failed: %1"_s.arg(description);
    model_.setErrorMessage(description);
    model_.setStatus(u"Idle"_s);
    model_.setOverlayPhase(OverlayPhase::error);
    model_.setPendingSelection(std::nullopt);
    model_.setIsEditSession(false);
}

QCoro::Task<> DictationSession::stop() {
    if (!model_.isRecording()) {
        qCInfo(shortcutLog).noquote() << u"stop ignored: engine was not recording"_s;
        co_return;
    }
    const qint64 generation = model_.sessionGeneration();
    shortcutSession_.activeMode = std::nullopt;
    model_.setStatus(u"Finishing…"_s);
    const std::optional<QString> audio = co_await services_.engine.stop();
    model_.setIsRecording(false);
    qCInfo(shortcutLog).noquote() << u"engine stopped"_s;
    if (model_.remoteTranscriptionThisSession() && services_.finishing.providerTranscriptionActive() &&
        audio) {
        co_await services_.finishing.transcribeWithProvider(*audio, generation);
        if (model_.sessionGeneration() != generation)
            co_return; // A newer session owns the model now.
    } else if (audio) {
        QFile::remove(*audio);
    }
    co_await finish(generation);
}

QCoro::Task<> DictationSession::finish(qint64 generation) {
    auto& finishing = services_.finishing;
    const QString transcript =
        WhiteSpace::trimmed(joinedTranscript(), WhiteSpace::Set::whitespacesAndNewlines).toString();
    if (model_.aiGenerateEnabled() && finishing.aiConfigured()) {
        if (const auto instruction = GenerateTrigger::instruction(transcript, model_.aiGenerateTrigger())) {
            std::optional<QString> context = model_.pendingContext();
            if (const auto selection = model_.pendingSelection())
                context = selection->text;
            else if (!context)
                context = services_.selection.contextText();
            co_await finishing.finishGenerate(*instruction, context, generation);
            co_return;
        }
    }
    if (model_.isEditSession() && model_.pendingSelection()) {
        co_await finishing.finishEdit(*model_.pendingSelection());
        co_return;
    }
    const QString raw = joinedTranscript();
    const QString cleaned = cleanedTextForCurrentMode();
    if (model_.aiPolishEnabled() && finishing.aiConfigured() && !isCodeLike(model_.activeProfile())) {
        co_await finishing.finishPolish(cleaned, raw, generation);
        co_return;
    }
    finishDictation(cleaned, raw);
}

void DictationSession::finishDictation(const QString& cleaned, const QString& raw) {
    services_.platform.marks.mark(Stage::cleaned);
    model_.setCleanedText(cleaned);
    model_.setAIProcessing(std::nullopt);
    model_.captureDictation(raw, cleaned, u"dictation"_s);
    model_.recordHistory(raw, cleaned);
    if (model_.overlayPhase() != OverlayPhase::done && model_.overlayPhase() != OverlayPhase::error)
        model_.setOverlayPhase(OverlayPhase::done);
    model_.setStatus(u"Idle"_s);
    if (model_.autoInsert())
        model_.insertText(cleaned, model_.targetApp());
    // A flow that ends after a newer session has begun leaves that session its overlay.
    if (!model_.isRecording())
        services_.hud.hide();
}

QString DictationSession::joinedTranscript() const { return model_.finalizedText() + model_.volatileText(); }

QString DictationSession::cleanedTextForCurrentMode() const {
    const QString text = joinedTranscript();
    const auto replacements = model_.wordReplacements();
    if (model_.cleanMode() == CleanMode::rules)
        return RuleCleaner::clean(text, replacements, model_.activeProfile());
    const QString replaced = RuleCleaner::applyReplacements(text, replacements);
    const auto laidOut = RuleCleaner::applyLayoutCommands(replaced);
    return laidOut.hasChanged
               ? RuleCleaner::normalizeLayout(laidOut.text, capitalizesSentences(model_.activeProfile()))
               : replaced;
}

void DictationSession::refreshCleaned() { model_.setCleanedText(cleanedTextForCurrentMode()); }

void DictationSession::pushLevel(float value) {
    const float shaped = std::pow(value, 0.65F);
    const float decayed = model_.level() * 0.72F;
    model_.setLevel(shaped > decayed ? shaped : decayed);
    model_.appendLevel(model_.level());
}

void DictationSession::resolveContextProfile(const std::optional<RunningApplication>& application) {
    if (const auto fixed = profile(model_.contextMode())) {
        model_.setActiveProfile(*fixed);
        model_.setActiveProfileWasDetected(false);
    } else {
        model_.setActiveProfile(ContextDetector::detect(
            application ? application->kin : std::nullopt, [&]() -> std::optional<QString> {
                if (!services_.platform.trust.isProcessTrusted())
                    return std::nullopt;
                return services_.platform.workspace.windowTitle(*application);
            }));
        model_.setActiveProfileWasDetected(true);
    }
    model_.setHasContext(true);
    qCInfo(contextLog).noquote() << u"context: mode=%1 profile=%2 detected=%3 app=%4"_s.arg(
        rawString(model_.contextMode()), rawString(model_.activeProfile()),
        boolName(model_.activeProfileWasDetected()), bundleName(application));
}

void DictationSession::contextModeChanged() {
    if (const auto fixed = profile(model_.contextMode())) {
        model_.setActiveProfile(*fixed);
        model_.setActiveProfileWasDetected(false);
        model_.setHasContext(true);
    }
    model_.persistPreferences();
    model_.refreshCleaned();
}

} // namespace velorin

#include "core/DictationSession.h"

#include "ai/Endpoint.h"
#include "core/AppModel.h"
#include "core/CleanedTranscript.h"
#include "core/DictationServices.h"
#include "delivery/ContextDetector.h"
#include "delivery/DeliveredText.h"
#include "platform/Log.h"
#include "text/Graphemes.h"

#include <QCoreApplication>
#include <QPointer>
#include <QUrl>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

using State = Dictation::State;
using Outcome = tl::expected<void, SpeechEngineError>;

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

/// What providers take.
constexpr qint64 mostBytesToSend = 25'000'000;

QString wordsFor(RecordingWriter::Loss loss) {
    return loss == RecordingWriter::Loss::tooLong
               ? AppModel::tr(
                     "The recording is longer than a provider takes (25 MB), so it was not sent; this "
                     "computer's own transcript was used.")
               : AppModel::tr(
                     "The recording is not whole, so it was not sent; this computer's own transcript was "
                     "used.");
}

QString statusOf(AIProcessing processing) {
    switch (processing) {
    case AIProcessing::polish:
        return u"Polishing…"_s;
    case AIProcessing::edit:
        return u"Rewriting…"_s;
    case AIProcessing::generate:
        return u"Generating…"_s;
    case AIProcessing::transcribe:
        return u"Transcribing…"_s;
    }
    Q_UNREACHABLE();
}

} // namespace

DictationSession::DictationSession(AppModel& model, DictationServices& services)
    : model_(model), services_(services),
      watching_(services.platform.sessionWatch.onChange([this] { sessionChanged(); })) {}

DictationSession::~DictationSession() { line_.abandon(); }

// ---- What asks for a dictation, or for its end.

void DictationSession::handleShortcutEvent(ShortcutEvent event) {
    if (event == ShortcutEvent::copyAgainTriggered) {
        qCInfo(shortcutLog).noquote() << u"event copyAgainTriggered -> paste again"_s;
        services_.router.pasteAgain();
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
        qCInfo(shortcutLog).noquote() << u"dictation stop"_s;
        // Its launch looks at that as soon as the microphone is open; the next press is another dictation.
        if (const auto dictation = launching(); dictation && dictation->launchMode)
            dictation->isToStop = true;
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

void DictationSession::beginSession() { services_.tasks.launch(start()); }

void DictationSession::toggleDictation() {
    if (model_.isRecording())
        services_.tasks.launch(stop());
    else
        beginSession();
}

/// Nobody listens to a room whose screen is locked, and nothing that was said is put onto that screen.
void DictationSession::sessionChanged() {
    if (!services_.platform.sessionWatch.isAway())
        return;
    line_.withholdAll();
    endForced();
}

/// Ends what listens, or is about to, as if the user had.
void DictationSession::endForced() {
    if (const auto dictation = launching())
        dictation->isToStop = true;
    if (line_.in(State::listening))
        services_.tasks.launch(stop());
}

/// The one whose microphone is being opened and that nobody has ended yet.
SharedDictation DictationSession::launching() const {
    return asked_ && asked_->state == State::launching && !asked_->isToStop ? asked_ : nullptr;
}

// ---- The start.

QCoro::Task<> DictationSession::start() {
    if (model_.isRecording())
        co_return;
    if (services_.platform.sessionWatch.isAway()) {
        qCInfo(shortcutLog).noquote() << u"start ignored: the session is locked"_s;
        co_return;
    }
    services_.preview.end();
    model_.setErrorMessage(std::nullopt);
    // Read before the first wait: it tells whether a shortcut was down when this launch began.
    const auto launchMode = shortcutSession_.activeMode;
    if (const auto dictation = launching()) {
        // Asked for twice before it listens: one dictation, of the later moment.
        dictation->launchMode = launchMode;
        if (isNewest(*dictation))
            aim(*dictation);
        co_return;
    }
    const auto dictation = std::make_shared<Dictation>();
    dictation->launchMode = launchMode;
    dictation->marks = services_.platform.marks.begin();
    asked_ = dictation;
    const bool granted = co_await services_.platform.trust.requestMicrophone();
    model_.setMicrophoneGranted(granted);
    if (!granted) {
        dictation->state = State::ended;
        model_.setErrorMessage(
            AppModel::tr("Microphone access denied. Enable it in System Settings > Privacy & "
                         "Security > Microphone, then relaunch."));
        co_return;
    }
    line_.join(dictation);
    newest_ = dictation;
    aim(*dictation);
    // One that was let go of before it listened has the microphone for a moment still.
    if (const auto earlier = line_.launchingBefore(*dictation)) {
        co_await earlier->hasClosed.opened();
        if (dictation->isToStop) {
            endUnheard(*dictation);
            co_return;
        }
    }
    auto opening =
        line_.hasAnyBefore(*dictation) ? openMicrophoneFirst(dictation) : openMicrophone(dictation);
    const auto started = co_await opening;
    if (!started) {
        failToStart(*dictation, started.error().description());
        co_return;
    }
    enterListening(*dictation);
    if (dictation->isToStop) {
        qCInfo(shortcutLog).noquote() << u"session ended during launch -> stopping"_s;
        co_await end(dictation);
    }
}

/// Where it is to go is where the user is at this moment.
void DictationSession::aim(Dictation& dictation) {
    dictation.generation = model_.sessionGeneration() + 1;
    model_.setSessionGeneration(dictation.generation);
    dictation.target = services_.platform.workspace.frontmostApplication();
    model_.setTargetApp(dictation.target);
    resolveContextProfile(dictation);
}

/// The usual way: what is selected is read before the microphone opens.
QCoro::Task<Outcome> DictationSession::openMicrophone(SharedDictation dictation) {
    co_await readSurroundings(dictation);
    resetTranscript();
    prepareEngine(dictation);
    auto starting = services_.engine.start(rawString(model_.language()));
    co_return co_await starting;
}

/// While others are still on their way the user speaks on: first of all the microphone. Then what is
/// selected, before an earlier text lands there; and then the earlier ones are waited for no longer.
QCoro::Task<Outcome> DictationSession::openMicrophoneFirst(SharedDictation dictation) {
    resetTranscript();
    prepareEngine(dictation);
    auto starting = services_.engine.start(rawString(model_.language()));
    co_await readSurroundings(dictation);
    line_.overtakeBefore(*dictation);
    co_return co_await starting;
}

bool DictationSession::isAnotherApplication(const Dictation& dictation) const {
    return dictation.target && !services_.platform.workspace.isCurrent(*dictation.target);
}

QCoro::Task<> DictationSession::readSurroundings(SharedDictation dictation) {
    model_.setPendingSelection(std::nullopt);
    model_.setPendingContext(std::nullopt);
    model_.setIsEditSession(false);
    model_.setIsGenerateSession(false);
    model_.setAIProcessing(std::nullopt);
    const auto& finishing = services_.finishing;
    if (!finishing.aiConfigured() || !isAnotherApplication(*dictation))
        co_return;
    if (model_.aiEnabled() || model_.aiGenerateEnabled()) {
        dictation->selection = co_await services_.selection.snapshot(*dictation->target);
        dictation->isEdit = model_.aiEnabled() && finishing.aiConfigured() && dictation->selection;
        if (dictation->selection)
            qCInfo(aiLog).noquote() << u"selection captured: app=%1 selection=%2 chars edit=%3"_s.arg(
                bundleName(dictation->target), QString::number(Graphemes::count(dictation->selection->text)),
                boolName(dictation->isEdit));
    }
    if (model_.aiGenerateEnabled() && finishing.aiConfigured() && !dictation->selection)
        dictation->context = services_.selection.contextText();
    if (!isNewest(*dictation))
        co_return;
    model_.setPendingSelection(dictation->selection);
    model_.setIsEditSession(dictation->isEdit);
    model_.setPendingContext(dictation->context);
}

void DictationSession::resetTranscript() {
    model_.setFinalizedText({});
    model_.setVolatileText({});
    model_.setCleanedText({});
    model_.setLevel(0);
    model_.setLevels({});
}

void DictationSession::prepareEngine(const SharedDictation& dictation) {
    auto& engine = services_.engine;
    const QPointer<AppModel> weak = &model_;
    engine.onResult = [this, weak, dictation](const QString& text, bool isFinal) {
        if (weak)
            hear(*dictation, text, isFinal);
    };
    engine.onError = [this, weak, dictation](const SpeechEngineError& error) {
        if (!weak)
            return;
        model_.setErrorMessage(error.description());
        if (!isNewest(*dictation))
            return;
        model_.setStatus(u"Error"_s);
        model_.setOverlayPhase(OverlayPhase::error);
    };
    engine.onStatus = [this, weak, dictation](const QString& text) {
        if (weak && isNewest(*dictation))
            model_.setStatus(text);
    };
    // Arrives on the audio thread, which may outlive both by a buffer: only the main thread looks whether
    // they are there.
    engine.onAudioLevel = [this, weak, its = std::weak_ptr(dictation)](float value) {
        const auto push = [this, weak, its, value] {
            if (const auto alive = its.lock(); weak && alive && isNewest(*alive))
                pushLevel(value);
        };
        QMetaObject::invokeMethod(QCoreApplication::instance(), push, Qt::QueuedConnection);
    };
    engine.marksOf = dictation->marks;
    engine.contextualStrings = model_.customVocabulary();
    engine.onRecordingCut = [weak, dictation](RecordingWriter::Loss loss) {
        if (weak)
            dictation->recordingLoss = loss;
    };
    dictation->isForProvider = services_.finishing.providerTranscriptionActive();
    engine.mostRecordedBytes.reset();
    if (!Endpoint::isThisMachine(QUrl(model_.aiEndpoint()).host()))
        engine.mostRecordedBytes = mostBytesToSend;
    model_.setRemoteTranscriptionThisSession(dictation->isForProvider);
    engine.recordsAudio = dictation->isForProvider;
}

void DictationSession::enterListening(Dictation& dictation) {
    dictation.state = State::listening;
    dictation.longest = services_.platform.clock.after(std::chrono::minutes(model_.longestDictationMinutes()),
                                                       [this] { endForced(); });
    if (isNewest(dictation)) {
        model_.setIsRecording(true);
        model_.setStatus(u"Listening…"_s);
        model_.setRecordingStartedAt(services_.platform.clock.now());
        model_.setOverlayPhase(OverlayPhase::listening);
        isOverlayUp_ = true;
        services_.hud.show(model_);
    }
    qCInfo(shortcutLog).noquote() << u"engine listening"_s;
}

/// It was over before the microphone was open: nothing was said.
void DictationSession::endUnheard(Dictation& dictation) {
    dictation.state = State::ended;
    dictation.hasClosed.open();
    line_.leave(dictation);
    if (isNewest(dictation))
        model_.setStatus(u"Idle"_s);
    hideUnlessNeeded();
}

void DictationSession::failToStart(Dictation& dictation, const QString& description) {
    qCCritical(shortcutLog).noquote() << u"engine start failed: %1"_s.arg(description);
    model_.setErrorMessage(description);
    dictation.selection.reset();
    dictation.isEdit = false;
    if (isNewest(dictation)) {
        model_.setOverlayPhase(OverlayPhase::error);
        model_.setPendingSelection(std::nullopt);
        model_.setIsEditSession(false);
    }
    endUnheard(dictation);
}

// ---- While it listens.

void DictationSession::hear(Dictation& dictation, const QString& text, bool isFinal) {
    if (isFinal) {
        dictation.finalizedText += text;
        dictation.volatileText.clear();
    } else {
        dictation.volatileText = text;
    }
    if (!isNewest(dictation))
        return;
    model_.setFinalizedText(dictation.finalizedText);
    model_.setVolatileText(dictation.volatileText);
    refreshCleaned();
}

void DictationSession::refreshCleaned() { model_.setCleanedText(model_.cleanedTextForCurrentMode()); }

void DictationSession::pushLevel(float value) {
    const float shaped = std::pow(value, 0.65F);
    const float decayed = model_.level() * 0.72F;
    model_.setLevel(shaped > decayed ? shaped : decayed);
    model_.appendLevel(model_.level());
}

void DictationSession::resolveContextProfile(Dictation& dictation) {
    const auto& application = dictation.target;
    const auto fixed = profile(model_.contextMode());
    dictation.profile =
        fixed ? *fixed
              : ContextDetector::detect(application ? application->kin : std::nullopt,
                                        [&]() -> std::optional<QString> {
                                            if (!services_.platform.trust.isProcessTrusted())
                                                return std::nullopt;
                                            return services_.platform.workspace.windowTitle(*application);
                                        });
    model_.setActiveProfile(dictation.profile);
    model_.setActiveProfileWasDetected(!fixed);
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
        if (newest_)
            newest_->profile = *fixed;
    }
    model_.persistPreferences();
    model_.refreshCleaned();
}

// ---- The stop.

QCoro::Task<> DictationSession::stop() {
    const auto dictation = line_.in(State::listening);
    if (!dictation) {
        const bool isLaunching = asked_ && asked_->state == State::launching;
        const bool isFinishing = !isLaunching && line_.in(State::draining);
        qCInfo(shortcutLog).noquote() << (isFinishing ? u"stop ignored: already finishing"_s
                                                      : u"stop ignored: engine was not recording"_s);
        co_return;
    }
    co_await end(dictation);
}

QCoro::Task<> DictationSession::end(SharedDictation dictation) {
    const PlaceInLine place(line_, dictation);
    services_.platform.marks.mark(dictation->marks, Stage::keyUp);
    dictation->state = State::draining;
    dictation->longest = {};
    if (isNewest(*dictation)) {
        shortcutSession_.activeMode = std::nullopt;
        model_.setStatus(u"Finishing…"_s);
        model_.setIsRecording(false);
    }
    auto stopping = services_.engine.stop();
    dictation->hasClosed.open();
    if (auto recording = co_await stopping)
        dictation->recording.emplace(*recording);
    qCInfo(shortcutLog).noquote() << u"engine stopped"_s;
    dictation->state = State::finishing;
    co_await takeProvidersTranscript(dictation);
    auto finishing = endingOf(dictation);
    const Ending ending = co_await finishing;
    services_.platform.marks.mark(dictation->marks, Stage::cleaned);
    co_await conclude(dictation, ending);
}

QCoro::Task<> DictationSession::takeProvidersTranscript(SharedDictation dictation) {
    auto& finishing = services_.finishing;
    const bool isToSend =
        dictation->isForProvider && finishing.providerTranscriptionActive() && dictation->recording;
    if (isToSend && dictation->recordingLoss) {
        model_.setErrorMessage(wordsFor(*dictation->recordingLoss));
    } else if (isToSend) {
        auto transcribing = finishing.transcribed(dictation, asking(dictation));
        const auto theirs = co_await transcribing;
        if (theirs.text) {
            dictation->finalizedText.clear();
            hear(*dictation, *theirs.text, true);
        }
        if (theirs.problem)
            model_.setErrorMessage(theirs.problem);
    }
    dictation->recording.reset();
}

QCoro::Task<Ending> DictationSession::endingOf(SharedDictation dictation) {
    auto& finishing = services_.finishing;
    const auto choice = EndingChoice::of(*dictation, model_, finishing.aiConfigured());
    const bool isInstruction =
        choice.kind == EndingChoice::Kind::generate || choice.kind == EndingChoice::Kind::edit;
    // Its answer will not be inserted any more: nobody has to wait for it.
    Subscription overtaken;
    if (isInstruction && dictation->isOvertaken)
        line_.leave(*dictation);
    else if (isInstruction)
        overtaken = dictation->overtaking.add([this, dictation] { line_.leave(*dictation); });
    const auto showing = asking(dictation);
    if (choice.kind == EndingChoice::Kind::generate) {
        auto context = choice.context;
        if (!context)
            context = services_.selection.contextText();
        auto generating = finishing.generated(dictation, choice.instruction, context, showing);
        co_return co_await generating;
    }
    if (choice.kind == EndingChoice::Kind::edit) {
        auto editing = finishing.edited(dictation, choice.instruction, showing);
        co_return co_await editing;
    }
    if (choice.kind == EndingChoice::Kind::plain)
        co_return Ending::plain(choice.base, dictation->transcript());
    if (isNewest(*dictation))
        model_.setCleanedText(choice.base);
    auto polishing = finishing.polished(dictation, choice.base, showing);
    co_return co_await polishing;
}

FinishingOperations::Asking DictationSession::asking(const SharedDictation& dictation) {
    return [this, dictation](AIProcessing processing) { showProcessing(*dictation, processing); };
}

void DictationSession::showProcessing(Dictation& dictation, AIProcessing processing) {
    if (!isNewest(dictation))
        return;
    if (processing == AIProcessing::generate) {
        model_.setIsGenerateSession(true);
        model_.setIsEditSession(false);
    }
    model_.setStatus(statusOf(processing));
    model_.setOverlayPhase(OverlayPhase::processing);
    model_.setAIProcessing(processing);
}

/// Kept first: whatever goes wrong with the delivery, the text is not lost.
QCoro::Task<> DictationSession::conclude(SharedDictation dictation, Ending reached) {
    Ending ending = cleared(*dictation, std::move(reached));
    if (ending.isPlain() || !dictation->isOvertaken)
        co_await dictation->turn.opened();
    keep(*dictation, ending);
    if (ending.replaces && !dictation->isOvertaken) {
        auto looking = services_.selection.isStillSelected(*ending.replaces);
        if (!co_await looking) {
            ending.problem = selectionChanged();
            ending.keepsStatus = true;
        }
    }
    dictation->state = State::ended;
    showEnd(*dictation, ending);
    deliver(*dictation, ending);
    line_.leave(*dictation);
    hideUnlessNeeded();
    services_.captureLog.countLater();
}

bool DictationSession::isTerminal(const Dictation& dictation) const {
    const auto kin = dictation.target ? dictation.target->kin : std::nullopt;
    return dictation.profile == ContextProfile::terminal ||
           (kin && ContextDetector::profileForBundleID(*kin) == ContextProfile::terminal);
}

/// What is kept and delivered is text and nothing else. A terminal runs each line that a provider sends it.
Ending DictationSession::cleared(const Dictation& dictation, Ending ending) const {
    const bool isRun = ending.isReply && isTerminal(dictation);
    ending.text = isRun ? DeliveredText::oneLine(ending.text) : DeliveredText::cleared(ending.text);
    ending.raw = DeliveredText::cleared(ending.raw);
    return ending;
}

QString DictationSession::selectionChanged() const {
    return model_.historyEnabled()
               ? AppModel::tr("The selection changed before the rewrite finished — the result is in History.")
               : AppModel::tr("The selection changed before the rewrite finished.");
}

void DictationSession::keep(const Dictation& dictation, const Ending& ending) {
    if (!ending.isKept())
        return;
    if (isNewest(dictation))
        model_.setCleanedText(ending.text);
    services_.captureLog.capture(ending.raw, ending.text, ending.kind, dictation.target);
    services_.history.record(ending.raw, ending.text, dictation.target);
}

void DictationSession::showEnd(const Dictation& dictation, const Ending& ending) {
    if (!isNewest(dictation))
        return;
    if (ending.isPlain())
        model_.setAIProcessing(std::nullopt);
    if (ending.problem)
        model_.setOverlayPhase(OverlayPhase::error);
    else if (!ending.isPlain() || model_.overlayPhase() != OverlayPhase::error)
        model_.setOverlayPhase(OverlayPhase::done); // what failed on the way stays visible to the end
    if (!ending.keepsStatus)
        model_.setStatus(u"Idle"_s);
}

void DictationSession::deliver(const Dictation& dictation, const Ending& ending) {
    const bool isLate = !ending.isPlain() && dictation.isOvertaken;
    if (isLate && ending.isKept())
        qCInfo(aiLog).noquote() << u"discarding stale %1 result"_s.arg(ending.kind);
    if (ending.problem || (isLate && model_.autoInsert())) {
        setAside(ending,
                 AppModel::tr("The answer came after the next dictation had begun, so it was not inserted."));
        return;
    }
    if (dictation.isWithheld && model_.autoInsert() && !ending.text.trimmed().isEmpty()) {
        setAside(ending, AppModel::tr("The screen was locked, so the text was not inserted."));
        return;
    }
    if (model_.autoInsert() && services_.router.insertText(ending.text, dictation.target))
        services_.platform.marks.mark(dictation.marks, Stage::delivered);
}

/// Within reach, and the user is told why it is not where it was to be.
void DictationSession::setAside(const Ending& ending, const QString& reason) {
    if (!ending.text.isEmpty())
        model_.setUndeliveredText(ending.text);
    model_.setErrorMessage(ending.problem.value_or(reason));
}

/// The overlay belongs to the newest dictation, and to none when that has ended.
void DictationSession::hideUnlessNeeded() {
    if (newest_->state == State::ended && std::exchange(isOverlayUp_, false))
        services_.hud.hide();
}

} // namespace velorin

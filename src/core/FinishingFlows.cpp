#include "core/FinishingFlows.h"

#include "cleanup/PolishGuard.h"
#include "core/AIReadiness.h"
#include "core/AISettings.h"
#include "core/AppModel.h"
#include "core/Overlay.h"
#include "core/SelectionOperations.h"
#include "platform/Background.h"
#include "platform/LatencyMarks.h"
#include "platform/Log.h"
#include "text/Graphemes.h"
#include "text/WhiteSpace.h"

#include <QElapsedTimer>
#include <QFile>
#include <QPointer>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// Shorter dictations are not worth a model's time, and are where models answer instead of editing.
constexpr qsizetype fewestPolishedWords = 4;

QString trimmed(const QString& text) {
    return WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).toString();
}

QString length(const QString& text) { return QString::number(Graphemes::count(text)); }

QString bundleName(const AppModel& model) {
    const auto target = model.targetApp();
    return target ? target->bundleIdentifier.value_or(u"nil"_s) : u"nil"_s;
}

/// The session that a flow works for, to be asked after each wait.
class Session final {
public:
    Session(AppModel& model, qint64 generation) : model_(&model), generation_(generation) {}

    [[nodiscard]] bool isThere() const { return !model_.isNull(); }
    [[nodiscard]] bool isCurrent() const { return model_ && model_->sessionGeneration() == generation_; }

private:
    QPointer<AppModel> model_;
    qint64 generation_;
};

/// A recording that nobody needs afterwards.
class PassingFile final {
public:
    explicit PassingFile(QString path) : path_(std::move(path)) {}
    PassingFile(const PassingFile&) = delete;
    PassingFile& operator=(const PassingFile&) = delete;
    ~PassingFile() { QFile::remove(path_); }

private:
    QString path_;
};

} // namespace

bool FinishingFlows::aiConfigured() const {
    return AIReadiness::isConfigured(model_, near_.languageModel.isAvailable());
}

bool FinishingFlows::providerTranscriptionActive() const {
    return AIReadiness::transcribes(model_, near_.languageModel.isAvailable());
}

std::optional<AIConfiguration> FinishingFlows::configuration() const {
    return near_.settings.configuration(near_.languageModel.isAvailable());
}

QCoro::Task<> FinishingFlows::transcribeWithProvider(QString audioPath, qint64 generation) {
    const PassingFile file(audioPath);
    const Session session(model_, generation);
    const auto with = session.isCurrent() ? configuration() : std::nullopt;
    if (!with)
        co_return;
    model_.setStatus(u"Transcribing…"_s);
    model_.setOverlayPhase(OverlayPhase::processing);
    model_.setAIProcessing(AIProcessing::transcribe);
    const QString vocabulary = model_.customVocabulary().join(u", "_s);
    const QString language = rawString(model_.language()).left(2);
    QElapsedTimer clock;
    clock.start();
    const AIResult text = co_await near_.service.transcribe(audioPath, model_.aiTranscriptionModel(),
                                                            vocabulary, language, *with);
    if (!session.isCurrent())
        co_return;
    if (!text) {
        const QString reason = description(text.error());
        qCCritical(aiLog).noquote() << u"provider transcription failed: %1"_s.arg(reason);
        model_.setErrorMessage(
            AppModel::tr("Provider transcription failed; used Apple’s on-device transcript. ") + reason);
        co_return;
    }
    model_.setFinalizedText(*text);
    model_.setVolatileText({});
    model_.refreshCleaned();
    qCInfo(aiLog).noquote() << u"transcription ok: provider=%1 chars=%2 ms=%3"_s.arg(
        rawString(with->provider), length(*text), QString::number(clock.elapsed()));
}

QCoro::Task<> FinishingFlows::finishPolish(QString base, QString raw, qint64 generation) {
    const bool isWorthIt = !trimmed(base).isEmpty() && PolishGuard::words(base).size() >= fewestPolishedWords;
    const auto with = isWorthIt ? configuration() : std::nullopt;
    if (!with) {
        model_.finishDictation(base, raw);
        co_return;
    }
    model_.setCleanedText(base);
    model_.setStatus(u"Polishing…"_s);
    model_.setOverlayPhase(OverlayPhase::processing);
    model_.setAIProcessing(AIProcessing::polish);
    qCInfo(aiLog).noquote() << u"polish request: app=%1 chars=%2"_s.arg(bundleName(model_), length(base));
    const Session session(model_, generation);
    const AIResult reply = co_await near_.service.polish(base, model_.activeProfile(), *with);
    if (!session.isCurrent())
        co_return;
    if (!reply) {
        qCCritical(aiLog).noquote() << u"polish failed: %1"_s.arg(description(reply.error()));
        model_.finishDictation(base, raw);
        co_return;
    }
    // A reply may have any length: it is judged where nobody waits for it.
    auto judging = inBackground([polished = *reply, base] { return PolishGuard::rejection(polished, base); });
    const auto reason = co_await judging;
    if (!session.isCurrent())
        co_return;
    if (reason)
        qCInfo(aiLog).noquote() << u"polish rejected: reason=%1 chars=%2"_s.arg(*reason, length(*reply));
    model_.finishDictation(reason ? base : *reply, raw);
}

QCoro::Task<> FinishingFlows::finishGenerate(QString instruction, std::optional<QString> context,
                                             qint64 generation) {
    model_.setIsGenerateSession(true);
    model_.setIsEditSession(false);
    model_.setStatus(u"Generating…"_s);
    model_.setOverlayPhase(OverlayPhase::processing);
    model_.setAIProcessing(AIProcessing::generate);
    if (instruction.isEmpty()) {
        endWithError(AppModel::tr("Say what to generate after “%1”.").arg(model_.generateTriggerDisplay()));
        co_return;
    }
    const auto with = configuration();
    if (!with) {
        endWithError(notConfiguredMessage());
        co_return;
    }
    qCInfo(aiLog).noquote() << u"generate request: app=%1 instruction=%2 context=%3 chars"_s.arg(
        bundleName(model_), length(instruction), length(context.value_or(QString())));
    const Session session(model_, generation);
    const AIResult reply =
        co_await near_.service.generate(instruction, context, model_.activeProfile(), *with);
    if (!session.isCurrent()) {
        if (session.isThere() && reply)
            qCInfo(aiLog).noquote() << u"discarding stale generate result"_s;
        co_return;
    }
    if (!reply) {
        endAsked(u"generate"_s, reply.error());
        co_return;
    }
    keep(instruction, *reply, u"generate"_s);
    deliver(*reply);
}

QCoro::Task<> FinishingFlows::finishEdit(SelectionSnapshot selection) {
    const Session session(model_, model_.sessionGeneration());
    model_.setStatus(u"Rewriting…"_s);
    model_.setOverlayPhase(OverlayPhase::processing);
    model_.setAIProcessing(AIProcessing::edit);
    const QString instruction = trimmed(model_.finalizedText() + model_.volatileText());
    if (instruction.isEmpty()) {
        endWithError(AppModel::tr("No instruction heard. Select text and say what to change."));
        co_return;
    }
    const auto with = configuration();
    if (!with) {
        endWithError(notConfiguredMessage());
        co_return;
    }
    qCInfo(aiLog).noquote() << u"edit request: app=%1 selection=%2 instruction=%3 chars"_s.arg(
        bundleName(model_), length(selection.text), length(instruction));
    const AIResult reply =
        co_await near_.service.edit(selection.text, instruction, model_.activeProfile(), *with);
    if (!session.isCurrent()) {
        if (session.isThere() && reply)
            qCInfo(aiLog).noquote() << u"discarding stale edit result"_s;
        co_return;
    }
    if (!reply) {
        endAsked(u"edit"_s, reply.error());
        co_return;
    }
    keep(instruction, *reply, u"edit"_s);
    const bool isStillSelected = co_await near_.selection.isStillSelected(selection);
    if (!session.isCurrent())
        co_return;
    if (isStillSelected)
        deliver(*reply);
    else if (model_.historyEnabled())
        endWithError(
            AppModel::tr("The selection changed before the rewrite finished — the result is in History."));
    else
        endWithError(AppModel::tr("The selection changed before the rewrite finished."));
}

QCoro::Task<QString> FinishingFlows::testAIConnection() {
    const auto with = configuration();
    const bool isOnDevice = model_.aiProvider() == AIProvider::apple;
    if (!with)
        co_return isOnDevice ? near_.service.appleIntelligenceAvailabilityDescription()
                             : AppModel::tr("Add an endpoint, model, and key first.");
    const AIResult reply = co_await near_.service.test(*with);
    if (!reply)
        co_return description(reply.error());
    if (with->provider == AIProvider::apple)
        co_return AppModel::tr("Connected to Apple Intelligence: ") + *reply;
    co_return AppModel::tr("Connected to ") + with->model + u": "_s + *reply;
}

QString FinishingFlows::notConfiguredMessage() const {
    if (model_.aiProvider() == AIProvider::apple)
        return AppModel::tr("Apple Intelligence is unavailable. ") +
               near_.service.appleIntelligenceAvailabilityDescription();
    return AppModel::tr("AI isn't configured. Add an endpoint, model and key in Settings.");
}

void FinishingFlows::endWithError(const QString& message) {
    model_.setErrorMessage(message);
    model_.setOverlayPhase(OverlayPhase::error);
    hideUnlessRecording();
}

void FinishingFlows::endAsked(const QString& what, const AIFailure& failure) {
    const QString reason = description(failure);
    qCCritical(aiLog).noquote() << u"%1 failed: %2"_s.arg(what, reason);
    model_.setStatus(u"Idle"_s);
    endWithError(reason);
}

void FinishingFlows::keep(const QString& instruction, const QString& reply, const QString& kind) {
    near_.marks.mark(Stage::cleaned);
    model_.setCleanedText(reply);
    model_.captureDictation(instruction, reply, kind);
    model_.recordHistory(instruction, reply);
}

void FinishingFlows::deliver(const QString& reply) {
    model_.setStatus(u"Idle"_s);
    model_.setOverlayPhase(OverlayPhase::done);
    if (model_.autoInsert())
        model_.insertText(reply, model_.targetApp());
    hideUnlessRecording();
}

void FinishingFlows::hideUnlessRecording() {
    if (!model_.isRecording())
        near_.hud.hide();
}

} // namespace velorin

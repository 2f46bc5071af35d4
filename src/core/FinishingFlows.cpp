#include "core/FinishingFlows.h"

#include "cleanup/PolishGuard.h"
#include "core/AIReadiness.h"
#include "core/AISettings.h"
#include "core/AppModel.h"
#include "core/GenerateTrigger.h"
#include "core/Overtaken.h"
#include "platform/Background.h"
#include "platform/Log.h"
#include "text/Graphemes.h"
#include "text/WhiteSpace.h"

#include <QElapsedTimer>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// Shorter dictations are not worth a model's time, and are where models answer instead of editing.
constexpr qsizetype fewestPolishedWords = 4;

bool isWorthPolishing(const QString& base) {
    return !WhiteSpace::trimmed(base, WhiteSpace::Set::whitespacesAndNewlines).isEmpty() &&
           PolishGuard::words(base).size() >= fewestPolishedWords;
}

QString length(const QString& text) { return QString::number(Graphemes::count(text)); }

QString bundleName(const Dictation& dictation) {
    return dictation.target ? dictation.target->bundleIdentifier.value_or(u"nil"_s) : u"nil"_s;
}

/// A reply may have any length: it is judged where nobody waits for it.
QCoro::Task<std::optional<QString>> rejection(QString polished, QString base) {
    auto judging = inBackground([polished, base] { return PolishGuard::rejection(polished, base); });
    co_return co_await judging;
}

Ending refused(const QString& kind, const QString& problem) {
    return {.text = {}, .raw = {}, .kind = kind, .problem = problem, .keepsStatus = true, .replaces = {}};
}

Ending failed(const QString& kind, const AIFailure& failure) {
    const QString reason = description(failure);
    qCCritical(aiLog).noquote() << u"%1 failed: %2"_s.arg(kind, outline(failure));
    return {.text = {}, .raw = {}, .kind = kind, .problem = reason, .replaces = {}};
}

} // namespace

bool FinishingFlows::aiConfigured() const {
    return AIReadiness::isConfigured(state_, near_.languageModel.isAvailable());
}

bool FinishingFlows::providerTranscriptionActive() const {
    return AIReadiness::transcribes(state_, near_.languageModel.isAvailable());
}

std::optional<AIConfiguration> FinishingFlows::configuration() const {
    return near_.settings.configuration(near_.languageModel.isAvailable());
}

QCoro::Task<FinishingOperations::Transcription> FinishingFlows::transcribed(SharedDictation dictation,
                                                                            Asking asking) {
    const auto with = dictation->isOvertaken ? std::nullopt : configuration();
    if (!with)
        co_return Transcription{};
    asking(AIProcessing::transcribe);
    const QString vocabulary = state_.customVocabulary().join(u", "_s);
    const QString language = rawString(state_.language()).left(2);
    QElapsedTimer clock;
    clock.start();
    const auto answer = co_await unlessOvertaken(near_.tasks, dictation,
                                                 near_.service.transcribe(dictation->recording->path(),
                                                                          state_.aiTranscriptionModel(),
                                                                          vocabulary, language, *with));
    if (!answer)
        co_return Transcription{};
    if (const AIResult& text = *answer; !text) {
        const QString reason = description(text.error());
        qCCritical(aiLog).noquote() << u"provider transcription failed: %1"_s.arg(outline(text.error()));
        co_return Transcription{
            {}, AppModel::tr("Provider transcription failed; used Apple’s on-device transcript. ") + reason};
    }
    qCInfo(aiLog).noquote() << u"transcription ok: provider=%1 chars=%2 ms=%3"_s.arg(
        rawString(with->provider), length(**answer), QString::number(clock.elapsed()));
    co_return Transcription{**answer, {}};
}

QCoro::Task<Ending> FinishingFlows::polished(SharedDictation dictation, QString base, Asking asking) {
    const Ending plain = Ending::plain(base, dictation->transcript());
    const bool isToAsk = !dictation->isOvertaken && isWorthPolishing(base);
    const auto with = isToAsk ? configuration() : std::nullopt;
    if (!with)
        co_return plain;
    asking(AIProcessing::polish);
    qCInfo(aiLog).noquote() << u"polish request: app=%1 chars=%2"_s.arg(bundleName(*dictation), length(base));
    const auto answer = co_await unlessOvertaken(near_.tasks, dictation,
                                                 near_.service.polish(base, dictation->profile, *with));
    if (!answer)
        co_return plain;
    const AIResult& reply = *answer;
    if (!reply) {
        qCCritical(aiLog).noquote() << u"polish failed: %1"_s.arg(outline(reply.error()));
        co_return plain;
    }
    const auto reason = co_await unlessOvertaken(near_.tasks, dictation, rejection(*reply, base));
    if (!reason)
        co_return plain;
    if (*reason) {
        qCInfo(aiLog).noquote() << u"polish rejected: reason=%1 chars=%2"_s.arg(**reason, length(*reply));
        co_return plain;
    }
    Ending polish = Ending::plain(*reply, dictation->transcript());
    polish.isReply = true;
    co_return std::as_const(polish);
}

QCoro::Task<Ending> FinishingFlows::generated(SharedDictation dictation, QString instruction,
                                              std::optional<QString> context, Asking asking) {
    const QString kind = u"generate"_s;
    asking(AIProcessing::generate);
    if (instruction.isEmpty())
        co_return refused(kind, AppModel::tr("Say what to generate after “%1”.")
                                    .arg(GenerateTrigger::display(state_.aiGenerateTrigger())));
    const auto with = configuration();
    if (!with)
        co_return refused(kind, notConfiguredMessage());
    qCInfo(aiLog).noquote() << u"generate request: app=%1 instruction=%2 context=%3 chars"_s.arg(
        bundleName(*dictation), length(instruction), length(context.value_or(QString())));
    const AIResult reply = co_await near_.service.generate(instruction, context, dictation->profile, *with);
    if (!reply)
        co_return failed(kind, reply.error());
    co_return Ending{
        .text = *reply, .raw = instruction, .kind = kind, .problem = {}, .isReply = true, .replaces = {}};
}

QCoro::Task<Ending> FinishingFlows::edited(SharedDictation dictation, QString instruction, Asking asking) {
    const QString kind = u"edit"_s;
    asking(AIProcessing::edit);
    if (instruction.isEmpty())
        co_return refused(kind, AppModel::tr("No instruction heard. Select text and say what to change."));
    const auto with = configuration();
    if (!with)
        co_return refused(kind, notConfiguredMessage());
    const SelectionSnapshot selection = *dictation->selection;
    qCInfo(aiLog).noquote() << u"edit request: app=%1 selection=%2 instruction=%3 chars"_s.arg(
        bundleName(*dictation), length(selection.text), length(instruction));
    const AIResult reply =
        co_await near_.service.edit(selection.text, instruction, dictation->profile, *with);
    if (!reply)
        co_return failed(kind, reply.error());
    co_return Ending{.text = *reply,
                     .raw = instruction,
                     .kind = kind,
                     .problem = {},
                     .isReply = true,
                     .replaces = selection};
}

QCoro::Task<QString> FinishingFlows::testAIConnection() {
    const auto with = configuration();
    const bool isOnDevice = state_.aiProvider() == AIProvider::apple;
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
    if (state_.aiProvider() == AIProvider::apple)
        return AppModel::tr("Apple Intelligence is unavailable. ") +
               near_.service.appleIntelligenceAvailabilityDescription();
    return AppModel::tr("AI isn't configured. Add an endpoint, model and key in Settings.");
}

} // namespace velorin

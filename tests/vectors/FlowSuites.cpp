#include "Suites.h"

#include "ai/AIKeychain.h"
#include "cleanup/PolishGuard.h"
#include "core/AIReadiness.h"
#include "core/Dictation.h"
#include "core/EndingChoice.h"
#include "tests/core/ModelDesk.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {
namespace {

void restoreProvider(AppModel& model, ModelDesk& desk, const QJsonObject& in) {
    desk.languageModel.state = in[u"modelAvailable"].toBool()
                                   ? LanguageModel::Availability::available
                                   : LanguageModel::Availability::deviceNotEligible;
    model.setAIProvider(aiProviderFromRawString(in[u"aiProvider"].toString()).value());
    model.setAIEndpoint(in[u"aiEndpoint"].toString());
    model.setAIModel(in[u"aiModel"].toString());
}

QJsonValue derived(const QJsonObject& in) {
    ModelDesk desk;
    AppModel& model = desk.startWithFlows();
    restoreProvider(model, desk, in);
    model.setAIKeyConfigured(in[u"aiKeyConfigured"].toBool());
    model.setAIEnabled(in[u"aiEnabled"].toBool());
    model.setAIPolishEnabled(in[u"aiPolishEnabled"].toBool());
    model.setAIGenerateEnabled(in[u"aiGenerateEnabled"].toBool());
    model.setAITranscriptionEnabled(in[u"aiTranscriptionEnabled"].toBool());
    model.setAITranscriptionModel(in[u"aiTranscriptionModel"].toString());
    return QJsonObject{{u"aiConfigured"_s, model.aiConfigured()},
                       {u"aiRunsOnDevice"_s, model.aiRunsOnDevice()},
                       {u"providerTranscriptionActive"_s, model.providerTranscriptionActive()},
                       {u"aiReady"_s, model.aiReady()}};
}

QJsonValue aiConfiguration(const QJsonObject& in) {
    ModelDesk desk;
    AppModel& model = desk.startWithFlows();
    restoreProvider(model, desk, in);
    if (in[u"key"].isString())
        desk.secrets.items[AIKeychain::account(model.aiProvider())] = in[u"key"].toString().toUtf8();
    const auto configuration = model.aiConfiguration();
    if (!configuration)
        return QJsonValue();
    return QJsonObject{{u"provider"_s, rawString(configuration->provider)},
                       {u"endpoint"_s, configuration->endpoint},
                       {u"model"_s, configuration->model},
                       {u"apiKey"_s, configuration->apiKey}};
}

void restoreSettings(AppModel& model, const QJsonObject& in) {
    model.setCleanMode(in[u"cleanMode"] == u"off"_s ? CleanMode::off : CleanMode::rules);
    model.setAIGenerateEnabled(in[u"aiGenerateEnabled"].toBool());
    model.setAIPolishEnabled(in[u"aiPolishEnabled"].toBool());
    model.setAIGenerateTrigger(in[u"aiGenerateTrigger"].toString());
}

/// The dictation as it stands when its last word has been recognised.
SharedDictation restoredDictation(const QJsonObject& in) {
    auto dictation = std::make_shared<Dictation>();
    dictation->finalizedText = in[u"finalizedText"].toString();
    dictation->volatileText = in[u"volatileText"].toString();
    dictation->profile = contextProfileFromRawString(in[u"activeProfile"].toString()).value();
    dictation->isEdit = in[u"isEditSession"].toBool();
    if (in[u"pendingSelection"].toBool())
        dictation->selection = SelectionSnapshot{.text = u"selection"_s, .appPID = {}};
    if (in[u"pendingContext"].toBool())
        dictation->context = u"pendingContext"_s;
    return dictation;
}

QJsonValue stopRoute(const QJsonObject& in) {
    ModelDesk desk;
    AppModel& model = desk.start();
    restoreSettings(model, in);
    const auto dictation = restoredDictation(in);
    const auto choice = EndingChoice::of(*dictation, model, in[u"aiConfigured"].toBool());
    switch (choice.kind) {
    case EndingChoice::Kind::generate: {
        const QString context = !choice.context        ? u"contextText"_s
                                : dictation->selection ? u"selection"_s
                                                       : u"pendingContext"_s;
        return QJsonObject{
            {u"flow"_s, u"generate"_s}, {u"instruction"_s, choice.instruction}, {u"context"_s, context}};
    }
    case EndingChoice::Kind::edit:
        return QJsonObject{{u"flow"_s, u"edit"_s}, {u"instruction"_s, choice.instruction}};
    case EndingChoice::Kind::polish:
        return QJsonObject{{u"flow"_s, u"polish"_s},
                           {u"base"_s, choice.base},
                           {u"raw"_s, dictation->transcript()},
                           {u"asksModel"_s, PolishGuard::words(choice.base).size() >= 4}};
    case EndingChoice::Kind::plain:
        return QJsonObject{
            {u"flow"_s, u"plain"_s}, {u"base"_s, choice.base}, {u"raw"_s, dictation->transcript()}};
    }
    Q_UNREACHABLE();
}

} // namespace

void addFlowSuites(SuiteTable& table) {
    table.add(u"flows.derived"_s, &derived);
    table.add(u"flows.aiConfiguration"_s, &aiConfiguration);
    table.add(u"flows.stopRoute"_s, &stopRoute);
}

} // namespace velorin::vectors

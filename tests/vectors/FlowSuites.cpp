#include "Suites.h"

#include "ai/AIKeychain.h"
#include "cleanup/PolishGuard.h"
#include "core/AIReadiness.h"
#include "tests/core/ModelDesk.h"
#include "text/WhiteSpace.h"

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

/// Everything that a dictation's end is decided by, as it stands when the key comes up.
void restoreSession(AppModel& model, const QJsonObject& in) {
    model.setFinalizedText(in[u"finalizedText"].toString());
    model.setVolatileText(in[u"volatileText"].toString());
    model.setCleanMode(in[u"cleanMode"] == u"off"_s ? CleanMode::off : CleanMode::rules);
    model.setActiveProfile(contextProfileFromRawString(in[u"activeProfile"].toString()).value());
    model.setAIGenerateEnabled(in[u"aiGenerateEnabled"].toBool());
    model.setAIPolishEnabled(in[u"aiPolishEnabled"].toBool());
    model.setAIGenerateTrigger(in[u"aiGenerateTrigger"].toString());
    model.setIsEditSession(in[u"isEditSession"].toBool());
    if (in[u"pendingSelection"].toBool())
        model.setPendingSelection(SelectionSnapshot{.text = u"selection"_s, .appPID = {}});
    if (in[u"pendingContext"].toBool())
        model.setPendingContext(u"pendingContext"_s);
}

QJsonValue askedFlow(const AppModel& model, const QString& flow) {
    const QString kind = flow.section(u' ', 0, 0);
    const QString rest = flow.section(u' ', 1);
    if (kind == "edit"_L1) {
        const QString instruction = model.finalizedText() + model.volatileText();
        return QJsonObject{
            {u"flow"_s, kind},
            {u"instruction"_s,
             WhiteSpace::trimmed(instruction, WhiteSpace::Set::whitespacesAndNewlines).toString()}};
    }
    const QString first = rest.section(u" | "_s, 0, -2);
    const QString second = rest.section(u" | "_s, -1);
    if (kind == "generate"_L1)
        return QJsonObject{{u"flow"_s, kind}, {u"instruction"_s, first}, {u"context"_s, second}};
    const bool asksModel = PolishGuard::words(first).size() >= 4;
    return QJsonObject{
        {u"flow"_s, kind}, {u"base"_s, first}, {u"raw"_s, second}, {u"asksModel"_s, asksModel}};
}

QJsonValue stopRoute(const QJsonObject& in) {
    ModelDesk desk;
    AppModel& model = desk.start();
    model.setContextMode(ContextMode::generic);
    desk.pressHold();
    desk.finishing->configured = in[u"aiConfigured"].toBool();
    desk.selection->context = u"contextText"_s;
    restoreSession(model, in);
    desk.releaseHold();
    desk.waitUntilSettled();
    if (!desk.finishing->flows.isEmpty())
        return askedFlow(model, desk.finishing->flows.first());
    const QString raw = model.finalizedText() + model.volatileText();
    return QJsonObject{{u"flow"_s, u"plain"_s}, {u"base"_s, model.cleanedText()}, {u"raw"_s, raw}};
}

} // namespace

void addFlowSuites(SuiteTable& table) {
    table.add(u"flows.derived"_s, &derived);
    table.add(u"flows.aiConfiguration"_s, &aiConfiguration);
    table.add(u"flows.stopRoute"_s, &stopRoute);
}

} // namespace velorin::vectors

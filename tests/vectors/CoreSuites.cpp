#include "Suites.h"

#include "ai/Endpoint.h"
#include "core/CaptureLog.h"
#include "core/GenerateTrigger.h"
#include "core/Preferences.h"
#include "tests/core/ModelDesk.h"

#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {
namespace {

/// A model without shortcuts and history of its own, as a fresh installation has it.
struct Desk : ModelDesk {
    Desk() { start(); }
};

QJsonValue textOrNull(const std::optional<QString>& text) { return text ? QJsonValue(*text) : QJsonValue(); }

QJsonValue pushLevel(const QJsonObject& in) {
    Desk desk;
    desk.model->setLevel(static_cast<float>(in[u"level"].toDouble()));
    QList<float> levels;
    for (const auto& level : in[u"levels"].toArray())
        levels.append(static_cast<float>(level.toDouble()));
    desk.model->setLevels(levels);
    for (const auto& value : in[u"values"].toArray())
        desk.model->pushLevel(static_cast<float>(value.toDouble()));
    QJsonArray after;
    for (const float level : desk.model->levels())
        after.append(static_cast<double>(level));
    return QJsonObject{{u"level"_s, static_cast<double>(desk.model->level())}, {u"levels"_s, after}};
}

QJsonValue migrateLegacyTrigger(const QJsonObject& in) {
    FakeUserDefaults defaults;
    defaults.values = in[u"defaults"].toObject();
    const auto configuration = Preferences::migrateLegacyTrigger(defaults);
    return QJsonObject{{u"configuration"_s, configuration.toJson()},
                       {u"removed"_s, !defaults.removed.isEmpty()}};
}

QJsonValue vocabulary(const QJsonObject& in) {
    Desk desk;
    QStringList words;
    for (const auto& word : in[u"vocabulary"].toArray())
        words.append(word.toString());
    desk.model->setCustomVocabulary(words);
    for (const auto& op : in[u"ops"].toArray()) {
        if (op[u"add"].isString())
            desk.model->addVocabulary(op[u"add"].toString());
        else
            desk.model->removeVocabulary(op[u"remove"].toString());
    }
    return QJsonArray::fromStringList(desk.model->customVocabulary());
}

QJsonObject toJson(const DictationRecord& record) {
    return {{u"text"_s, record.text}, {u"raw"_s, textOrNull(record.raw)}, {u"appName"_s, record.appName}};
}

QJsonValue historyRecord(const QJsonObject& in) {
    Desk desk;
    QList<DictationRecord> existing;
    for (int i = 0; i < in[u"existing"].toInt(); ++i)
        existing.append({.id = QUuid::createUuid(),
                         .date = desk.clock.time,
                         .appName = u"Old"_s,
                         .text = u"e%1"_s.arg(i),
                         .raw = u"e%1"_s.arg(i)});
    desk.model->setHistory(existing);
    desk.model->setHistoryEnabled(in[u"historyEnabled"].toBool());
    if (in[u"app"].isString()) {
        auto target = ModelDesk::editor();
        target.localizedName = in[u"app"].toString();
        desk.model->setTargetApp(target);
    }
    for (const auto& record : in[u"records"].toArray())
        desk.model->recordHistory(record[u"raw"].toString(), record[u"cleaned"].toString());
    const auto history = desk.model->history();
    QJsonArray newest;
    for (const auto& record : history.first(std::min<qsizetype>(5, history.size())))
        newest.append(toJson(record));
    return QJsonObject{{u"count"_s, history.size()},
                       {u"newest"_s, newest},
                       {u"oldest"_s, history.isEmpty() ? QJsonValue() : QJsonValue(toJson(history.last()))}};
}

QJsonValue captureStatus(const QJsonObject& in) {
    if (in[u"contentBase64"].isString())
        return CaptureLog::statusText(QByteArray::fromBase64(in[u"contentBase64"].toString().toLatin1()));
    const auto content = in[u"content"];
    return CaptureLog::statusText(content.isString() ? std::optional(content.toString().toUtf8())
                                                     : std::nullopt);
}

AppModel& restoreProviders(Desk& desk, const QJsonObject& state) {
    auto& model = *desk.model;
    const auto endpoint = [](const QString& text) {
        return text.startsWith("@default:"_L1) ? defaultEndpoint(*aiProviderFromRawString(text.mid(9)))
                                               : text;
    };
    model.setAIProvider(*aiProviderFromRawString(state[u"aiProvider"].toString()));
    model.setAIEndpoint(endpoint(state[u"aiEndpoint"].toString()));
    model.setAIModel(state[u"aiModel"].toString());
    model.setAITranscriptionModel(state[u"aiTranscriptionModel"].toString());
    AIProviderConfigs configs;
    const auto stored = state[u"aiProviderConfigs"].toObject();
    for (auto row = stored.begin(); row != stored.end(); ++row)
        configs.insert(row.key(),
                       {endpoint(row.value()[u"endpoint"].toString()), row.value()[u"model"].toString()});
    model.setAIProviderConfigs(configs);
    AITranscriptionModels models;
    const auto storedModels = state[u"aiTranscriptionModels"].toObject();
    for (auto row = storedModels.begin(); row != storedModels.end(); ++row)
        models.insert(row.key(), row.value().toString());
    model.setAITranscriptionModels(models);
    return model;
}

/// Our own default endpoints are named by their provider, since each implementation has its own.
QString endpointName(const QString& endpoint) {
    for (const AIProvider provider : allAIProviders)
        if (!endpoint.isEmpty() && endpoint == defaultEndpoint(provider))
            return u"@default:"_s + rawString(provider);
    return endpoint;
}

QJsonObject providersOf(const AppModel& model) {
    QJsonObject configs;
    const auto rows = model.aiProviderConfigs();
    for (auto row = rows.begin(); row != rows.end(); ++row)
        configs[row.key()] =
            QJsonObject{{u"endpoint"_s, endpointName(row->endpoint)}, {u"model"_s, row->model}};
    QJsonObject models;
    const auto modelRows = model.aiTranscriptionModels();
    for (auto row = modelRows.begin(); row != modelRows.end(); ++row)
        models[row.key()] = row.value();
    return {{u"aiProvider"_s, rawString(model.aiProvider())},
            {u"aiEndpoint"_s, endpointName(model.aiEndpoint())},
            {u"aiModel"_s, model.aiModel()},
            {u"aiTranscriptionModel"_s, model.aiTranscriptionModel()},
            {u"aiProviderConfigs"_s, configs},
            {u"aiTranscriptionModels"_s, models}};
}

QJsonValue selectAIProvider(const QJsonObject& in) {
    Desk desk;
    auto& model = restoreProviders(desk, in[u"state"].toObject());
    QJsonArray steps;
    for (const auto& provider : in[u"select"].toArray()) {
        desk.defaults.written.clear();
        model.selectAIProvider(*aiProviderFromRawString(provider.toString()));
        steps.append(QJsonObject{{u"state"_s, providersOf(model)},
                                 {u"persisted"_s, !desk.defaults.written.isEmpty()}});
    }
    return steps;
}

QJsonValue inferAIProvider(const QJsonObject& in) {
    Desk desk;
    const QString endpoint = in[u"endpoint"].toString();
    desk.defaults.values = {{u"aiEndpoint"_s, endpoint.startsWith("@default:"_L1)
                                                  ? defaultEndpoint(*aiProviderFromRawString(endpoint.mid(9)))
                                                  : endpoint}};
    const bool hasLegacyKey = in[u"legacyKey"].toBool();
    const Preferences preferences(*desk.model, desk.defaults, [hasLegacyKey] { return hasLegacyKey; });
    return rawString(preferences.inferAIProvider());
}

} // namespace

void addCoreSuites(SuiteTable& table) {
    table.add(u"flows.pushLevel"_s, &pushLevel, {.relative = 1e-5});
    table.add(u"flows.generateInstruction"_s, [](const QJsonObject& in) {
        return textOrNull(GenerateTrigger::instruction(in[u"text"].toString(), in[u"trigger"].toString()));
    });
    table.add(u"flows.generateTriggerDisplay"_s, [](const QJsonObject& in) -> QJsonValue {
        return GenerateTrigger::display(in[u"trigger"].toString());
    });
    table.add(u"prefs.migrateLegacyTrigger"_s, &migrateLegacyTrigger);
    table.add(u"prefs.vocabulary"_s, &vocabulary);
    table.add(u"history.record"_s, &historyRecord);
    table.add(u"capture.status"_s, &captureStatus);
    table.add(u"ai.isLocalEndpoint"_s, [](const QJsonObject& in) -> QJsonValue {
        return Endpoint::isLocal(in[u"endpoint"].toString());
    });
    table.add(u"ai.inferAIProvider"_s, &inferAIProvider);
    table.add(u"ai.selectAIProvider"_s, &selectAIProvider);
}

} // namespace velorin::vectors

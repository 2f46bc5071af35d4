#include "ai/AIProvider.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

struct ProviderRow {
    AIProvider provider;
    QLatin1StringView raw, label, endpoint, model, transcriptionModel;
    bool sendsAudio;
};

constexpr std::array rows{
    ProviderRow{AIProvider::apple, "apple"_L1, "Apple Intelligence"_L1, ""_L1, ""_L1, ""_L1, false},
    ProviderRow{AIProvider::openAI, "openAI"_L1, "OpenAI"_L1, "https://api.openai.com/v1"_L1,
                "gpt-4.1-mini"_L1, "whisper-1"_L1, true},
    ProviderRow{AIProvider::groq, "groq"_L1, "Groq"_L1, "https://api.groq.com/openai/v1"_L1,
                "openai/gpt-oss-120b"_L1, "whisper-large-v3-turbo"_L1, true},
    ProviderRow{AIProvider::ollama, "ollama"_L1, "Ollama"_L1, "http://localhost:11434/v1"_L1, "llama3.2"_L1,
                ""_L1, false},
    ProviderRow{AIProvider::custom, "custom"_L1, "Custom"_L1, ""_L1, ""_L1, "whisper-1"_L1, true},
};

constexpr const ProviderRow& row(AIProvider provider) { return rows.at(static_cast<std::size_t>(provider)); }

} // namespace

QString rawString(AIProvider provider) { return row(provider).raw; }

std::optional<AIProvider> aiProviderFromRawString(QStringView raw) {
    const auto found = std::ranges::find_if(rows, [raw](const ProviderRow& r) { return raw == r.raw; });
    return found == rows.end() ? std::nullopt : std::optional(found->provider);
}

QString label(AIProvider provider) { return row(provider).label; }
QString defaultEndpoint(AIProvider provider) { return row(provider).endpoint; }
QString defaultModel(AIProvider provider) { return row(provider).model; }
QString defaultTranscriptionModel(AIProvider provider) { return row(provider).transcriptionModel; }
bool sendsAudio(AIProvider provider) { return row(provider).sendsAudio; }

QString encode(const AIProviderConfigs& configs) {
    QJsonObject table;
    for (auto config = configs.begin(); config != configs.end(); ++config)
        table[config.key()] = QJsonObject{{u"endpoint"_s, config->endpoint}, {u"model"_s, config->model}};
    return QString::fromUtf8(QJsonDocument(table).toJson(QJsonDocument::Compact));
}

std::optional<AIProviderConfigs> decodeAIProviderConfigs(QStringView json) {
    const auto document = QJsonDocument::fromJson(json.toUtf8());
    if (!document.isObject())
        return std::nullopt;
    AIProviderConfigs configs;
    const auto table = document.object();
    for (auto entry = table.begin(); entry != table.end(); ++entry) {
        const QJsonValue endpoint = entry.value()["endpoint"_L1];
        const QJsonValue model = entry.value()["model"_L1];
        if (!endpoint.isString() || !model.isString())
            return std::nullopt;
        configs.insert(entry.key(), {endpoint.toString(), model.toString()});
    }
    return configs;
}

} // namespace velorin

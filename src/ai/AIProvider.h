/// The providers that can power the AI features, one at a time, and what each starts with.
#pragma once

#include <QHash>
#include <QString>

#include <array>
#include <optional>

namespace velorin {

enum class AIProvider { apple, openAI, groq, ollama, custom };

/// In the order in which pickers list them.
inline constexpr std::array allAIProviders{AIProvider::apple, AIProvider::openAI, AIProvider::groq,
                                           AIProvider::ollama, AIProvider::custom};

/// The stored name, such as "openAI".
[[nodiscard]] QString rawString(AIProvider provider);
[[nodiscard]] std::optional<AIProvider> aiProviderFromRawString(QStringView raw);

[[nodiscard]] QString label(AIProvider provider);
[[nodiscard]] QString defaultEndpoint(AIProvider provider);
[[nodiscard]] QString defaultModel(AIProvider provider);
[[nodiscard]] QString defaultTranscriptionModel(AIProvider provider);
/// Whether recordings can be sent to it for transcription.
[[nodiscard]] bool sendsAudio(AIProvider provider);

/// The remembered settings of one provider.
struct AIProviderConfig {
    QString endpoint;
    QString model;

    bool operator==(const AIProviderConfig&) const = default;
};

/// Keyed by the provider's raw string.
using AIProviderConfigs = QHash<QString, AIProviderConfig>;

/// The table as JSON text, and back. A row that lacks a key makes the whole table undecodable.
[[nodiscard]] QString encode(const AIProviderConfigs& configs);
[[nodiscard]] std::optional<AIProviderConfigs> decodeAIProviderConfigs(QStringView json);

} // namespace velorin

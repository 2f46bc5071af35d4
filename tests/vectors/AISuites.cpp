#include "Suites.h"

#include "ai/Endpoint.h"
#include "ai/Prompts.h"
#include "ai/Replies.h"
#include "ai/TranscriptionForm.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {
namespace {

QJsonValue orNull(const std::optional<QString>& text) { return text ? QJsonValue(*text) : QJsonValue(); }

std::optional<QString> optionalIn(const QJsonValue& value) {
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

/// The default endpoint of a provider may be named instead of spelled.
QString endpointIn(const QJsonObject& in) {
    const QString endpoint = in[u"endpoint"].toString();
    return endpoint.startsWith("@default:"_L1)
               ? defaultEndpoint(aiProviderFromRawString(endpoint.mid(9)).value())
               : endpoint;
}

QByteArray bodyIn(const QJsonObject& in) { return in[u"body"].toString().toUtf8(); }

ContextProfile profileIn(const QJsonObject& in) {
    return contextProfileFromRawString(in[u"profile"].toString()).value();
}

QJsonValue toJson(const Prompt& prompt) {
    return QJsonObject{{u"system"_s, prompt.system}, {u"user"_s, prompt.user}};
}

QJsonValue errorMessage(const QJsonObject& in) {
    const QString message = Replies::errorMessage(bodyIn(in));
    const ServiceError error{ServiceError::Kind::http, in[u"status"].toInt(), message};
    return QJsonObject{{u"message"_s, message}, {u"description"_s, error.description()}};
}

QJsonValue transcriptionReply(const QJsonObject& in) {
    const auto text = Replies::transcription(bodyIn(in));
    if (text)
        return QJsonObject{{u"text"_s, *text}};
    const bool isEmpty = text.error() == ServiceError::Kind::emptyResponse;
    return QJsonObject{{u"failure"_s, isEmpty ? u"emptyResponse"_s : u"malformedResponse"_s}};
}

QJsonValue multipart(const QJsonObject& in) {
    const TranscriptionForm form{in[u"boundary"].toString(), in[u"model"].toString(),
                                 optionalIn(in[u"prompt"]), optionalIn(in[u"language"])};
    const auto audio = QByteArray::fromBase64(in[u"audioBase64"].toString().toLatin1());
    return QString::fromLatin1(form.body(audio).toBase64());
}

void addReplies(SuiteTable& table) {
    table.add(u"ai.errorMessage"_s, &errorMessage);
    table.add(u"ai.chatReply"_s, [](const QJsonObject& in) { return orNull(Replies::chat(bodyIn(in))); });
    table.add(u"ai.transcriptionReply"_s, &transcriptionReply);
    table.add(u"ai.stripWrappingFence"_s, [](const QJsonObject& in) -> QJsonValue {
        return Replies::stripWrappingFence(in[u"reply"].toString());
    });
    table.add(u"ai.fillPlaceholders"_s, [](const QJsonObject& in) -> QJsonValue {
        return Replies::fillPlaceholders(in[u"text"].toString(), in[u"name"].toString());
    });
    table.add(u"ai.testOutcome"_s, [](const QJsonObject& in) -> QJsonValue {
        return Replies::passesConnectionTest(in[u"reply"].toString()) ? in[u"reply"] : QJsonValue();
    });
}

void addPrompts(SuiteTable& table) {
    table.add(u"ai.polishPrompt"_s, [](const QJsonObject& in) {
        return toJson(Prompts::polish(in[u"transcript"].toString(), profileIn(in)));
    });
    table.add(u"ai.editPrompt"_s, [](const QJsonObject& in) {
        return toJson(
            Prompts::edit(in[u"selection"].toString(), in[u"instruction"].toString(), profileIn(in)));
    });
    table.add(u"ai.generateSystem"_s, [](const QJsonObject& in) -> QJsonValue {
        return Prompts::generateSystem(profileIn(in), in[u"name"].toString());
    });
    table.add(u"ai.generateUser"_s, [](const QJsonObject& in) -> QJsonValue {
        return Prompts::generateUser(in[u"instruction"].toString(), optionalIn(in[u"context"]),
                                     aiProviderFromRawString(in[u"provider"].toString()).value());
    });
}

} // namespace

void addAISuites(SuiteTable& table) {
    table.add(u"ai.chatURL"_s,
              [](const QJsonObject& in) { return orNull(Endpoint::chatUrl(endpointIn(in))); });
    table.add(u"ai.transcriptionURL"_s,
              [](const QJsonObject& in) { return orNull(Endpoint::transcriptionUrl(endpointIn(in))); });
    table.add(u"ai.multipart"_s, &multipart);
    addReplies(table);
    addPrompts(table);
}

} // namespace velorin::vectors

#include "ai/AIService.h"

#include "ai/Endpoint.h"
#include "ai/Replies.h"
#include "ai/TranscriptionForm.h"
#include "platform/Background.h"
#include "platform/Log.h"
#include "text/ForeignText.h"
#include "text/Graphemes.h"
#include "text/WhiteSpace.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int textTokens = 1600;
constexpr int testTokens = 512;
constexpr double temperature = 0.2;

QString tr(const char* text) { return QCoreApplication::translate("AIService", text); }

QString trimmed(const QString& text) {
    return WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).toString();
}

/// What stands in the log about a call.
struct Call {
    QString host;
    QString model;
    QElapsedTimer clock;

    Call(const QUrl& url, QString name)
        : host(url.host().isEmpty() ? u"nil"_s : url.host()), model(std::move(name)) {
        clock.start();
    }
    void logRefusal(const QString& what, int status) const {
        qCInfo(aiLog).noquote() << u"%1 failed: status=%2 host=%3 model=%4"_s.arg(
            what, QString::number(status), host, model);
    }
    void logSuccess(const QString& what, qint64 milliseconds, qsizetype characters) const {
        qCInfo(aiLog).noquote() << u"%1 ok: host=%2 model=%3 ms=%4 chars=%5"_s.arg(
            what, host, model, QString::number(milliseconds), QString::number(characters));
    }
};

/// A reply as far as it is read on the other thread.
struct Read {
    tl::expected<QString, ServiceError> text;
    qsizetype characters = 0;
};

bool isSuccess(int status) { return status >= 200 && status <= 299; }

/// A refusal may have any length, and hold anything.
constexpr qsizetype longestRefusal = 200;

Read refusal(const HttpResponse& response) {
    const QString said = Replies::errorMessage(response.body);
    return {tl::unexpected(ServiceError{ServiceError::Kind::http, response.status,
                                        ForeignText::oneLine(said, longestRefusal), said.size()})};
}

Read readText(QString text) {
    const qsizetype characters = Graphemes::count(text);
    return {std::move(text), characters};
}

Read readChat(const HttpResponse& response) {
    if (!isSuccess(response.status))
        return refusal(response);
    auto text = Replies::chat(response.body);
    if (!text)
        return {tl::unexpected(ServiceError{.kind = ServiceError::Kind::emptyResponse, .text = {}})};
    return readText(std::move(*text));
}

Read readTranscription(const HttpResponse& response) {
    if (!isSuccess(response.status))
        return refusal(response);
    auto text = Replies::transcription(response.body);
    if (!text)
        return {tl::unexpected(ServiceError{.kind = text.error(), .text = {}})};
    return readText(std::move(*text));
}

QList<HttpHeader> headers(const QByteArray& contentType, const QString& apiKey) {
    QList<HttpHeader> list{{"Content-Type", contentType}};
    if (const QString key = trimmed(apiKey); !key.isEmpty())
        list.append({"Authorization", "Bearer " + key.toUtf8()});
    return list;
}

/// Others can read what goes over a network unencrypted.
bool givesAwayKey(const QUrl& url, const QString& apiKey) {
    return !trimmed(apiKey).isEmpty() && url.scheme() != "https"_L1 && !Endpoint::isThisMachine(url.host());
}

QByteArray chatBody(const Prompt& prompt, const QString& model, int maxTokens) {
    const QJsonArray messages{QJsonObject{{u"role"_s, u"system"_s}, {u"content"_s, prompt.system}},
                              QJsonObject{{u"role"_s, u"user"_s}, {u"content"_s, prompt.user}}};
    return QJsonDocument(QJsonObject{{u"model"_s, model},
                                     {u"messages"_s, messages},
                                     {u"temperature"_s, temperature},
                                     {u"max_tokens"_s, maxTokens}})
        .toJson(QJsonDocument::Compact);
}

/// The whole file; nothing when it cannot be read or holds nothing.
QByteArray contentOf(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray content = file.readAll();
    return file.error() == QFile::NoError ? content : QByteArray();
}

QCoro::Task<AIResult> unwrapped(AIResult reply) {
    if (!reply)
        co_return reply;
    auto stripping =
        inBackground([text = std::move(*reply)]() -> AIResult { return Replies::stripWrappingFence(text); });
    co_return co_await stripping;
}

} // namespace

QCoro::Task<AIResult> AIService::polish(QString transcript, ContextProfile profile,
                                        Configuration configuration) {
    const Prompt prompt = Prompts::polish(transcript, profile);
    AIResult reply = co_await complete(prompt, std::move(configuration), textTokens);
    co_return co_await unwrapped(std::move(reply));
}

QCoro::Task<AIResult> AIService::edit(QString selection, QString instruction, ContextProfile profile,
                                      Configuration configuration) {
    const Prompt prompt = Prompts::edit(selection, instruction, profile);
    AIResult reply = co_await complete(prompt, std::move(configuration), textTokens);
    co_return co_await unwrapped(std::move(reply));
}

QCoro::Task<AIResult> AIService::generate(QString instruction, std::optional<QString> context,
                                          ContextProfile profile, Configuration configuration) {
    const Prompt prompt{Prompts::generateSystem(profile, account_.fullName()),
                        Prompts::generateUser(instruction, context, configuration.provider)};
    AIResult reply = co_await complete(prompt, std::move(configuration), textTokens);
    reply = co_await unwrapped(std::move(reply));
    if (!reply)
        co_return reply;
    auto filling = inBackground([text = std::move(*reply), name = account_.fullName()]() -> AIResult {
        return Replies::fillPlaceholders(text, name);
    });
    co_return co_await filling;
}

QCoro::Task<AIResult> AIService::test(Configuration configuration) {
    AIResult reply = co_await complete(Prompts::connectionTest(), std::move(configuration), testTokens);
    if (reply && !Replies::passesConnectionTest(*reply))
        co_return failed(ServiceError::Kind::malformedResponse);
    co_return reply;
}

QCoro::Task<AIResult> AIService::complete(Prompt prompt, Configuration configuration, int maxTokens) {
    if (configuration.provider == AIProvider::apple)
        co_return co_await completeOnDevice(std::move(prompt), maxTokens);
    co_return co_await completeHTTP(std::move(prompt), std::move(configuration), maxTokens);
}

QCoro::Task<AIResult> AIService::completeHTTP(Prompt prompt, Configuration configuration, int maxTokens) {
    const auto address = Endpoint::chatUrl(configuration.endpoint);
    if (!address)
        co_return failed(ServiceError::Kind::invalidEndpoint);
    const QString model = trimmed(configuration.model);
    if (model.isEmpty())
        co_return failed(ServiceError::Kind::notConfigured);
    if (givesAwayKey(QUrl(*address, QUrl::StrictMode), configuration.apiKey))
        co_return failed(ServiceError::Kind::notEncrypted);
    HttpRequest request{.url = QUrl(*address, QUrl::StrictMode),
                        .headers = headers("application/json", configuration.apiKey),
                        .body = chatBody(prompt, model, maxTokens)};
    const Call call(request.url, model);
    const HttpResult response = co_await session_.send(std::move(request));
    const qint64 milliseconds = call.clock.elapsed();
    if (!response)
        co_return tl::unexpected<AIFailure>(response.error());
    auto reading = inBackground([response = *response] { return readChat(response); });
    const Read read = co_await reading;
    if (!read.text) {
        if (read.text.error().kind == ServiceError::Kind::http)
            call.logRefusal(u"ai request"_s, read.text.error().status);
        co_return tl::unexpected<AIFailure>(read.text.error());
    }
    call.logSuccess(u"ai request"_s, milliseconds, read.characters);
    co_return *read.text;
}

QCoro::Task<AIResult> AIService::completeOnDevice(Prompt prompt, int maxTokens) {
    if (!languageModel_.isAvailable())
        co_return tl::unexpected<AIFailure>(
            ServiceError{.kind = ServiceError::Kind::appleIntelligenceUnavailable,
                         .text = appleIntelligenceAvailabilityDescription()});
    QElapsedTimer clock;
    clock.start();
    LanguageModelRequest request{.instructions = prompt.system,
                                 .prompt = prompt.user,
                                 .temperature = temperature,
                                 .maximumResponseTokens = maxTokens};
    const auto content = co_await languageModel_.respond(std::move(request));
    if (!content && content.error().isCancellation)
        co_return tl::unexpected<AIFailure>(RequestCancelled{});
    if (!content) {
        qCCritical(aiLog).noquote() << u"apple intelligence failed: %1"_s.arg(content.error().description);
        co_return tl::unexpected<AIFailure>(
            ServiceError{.kind = ServiceError::Kind::appleIntelligence, .text = content.error().description});
    }
    const QString text = trimmed(*content);
    if (text.isEmpty())
        co_return failed(ServiceError::Kind::emptyResponse);
    qCInfo(aiLog).noquote() << u"apple intelligence ok: ms=%1 chars=%2"_s.arg(
        QString::number(clock.elapsed()), QString::number(Graphemes::count(text)));
    co_return text;
}

QCoro::Task<AIResult> AIService::transcribe(QString audioPath, QString model, std::optional<QString> prompt,
                                            std::optional<QString> language, Configuration configuration) {
    if (!sendsAudio(configuration.provider))
        co_return failed(ServiceError::Kind::notConfigured);
    const auto address = Endpoint::transcriptionUrl(configuration.endpoint);
    if (!address)
        co_return failed(ServiceError::Kind::invalidEndpoint);
    model = trimmed(model);
    if (model.isEmpty())
        co_return failed(ServiceError::Kind::notConfigured);
    if (givesAwayKey(QUrl(*address, QUrl::StrictMode), configuration.apiKey))
        co_return failed(ServiceError::Kind::notEncrypted);
    auto loading = inBackground([audioPath] { return contentOf(audioPath); });
    const QByteArray audio = co_await loading;
    if (audio.isEmpty())
        co_return failed(ServiceError::Kind::audioUnavailable);
    const TranscriptionForm form{TranscriptionForm::newBoundary(), model, std::move(prompt),
                                 std::move(language)};
    HttpRequest request{
        .url = QUrl(*address, QUrl::StrictMode),
        .headers = headers("multipart/form-data; boundary=" + form.boundary.toUtf8(), configuration.apiKey),
        .body = form.body(audio)};
    const Call call(request.url, model);
    const HttpResult response = co_await transcriptionSession_.send(std::move(request));
    const qint64 milliseconds = call.clock.elapsed();
    if (!response)
        co_return tl::unexpected<AIFailure>(response.error());
    auto reading = inBackground([response = *response] { return readTranscription(response); });
    const Read read = co_await reading;
    if (!read.text) {
        if (read.text.error().kind == ServiceError::Kind::http)
            call.logRefusal(u"transcription"_s, read.text.error().status);
        co_return tl::unexpected<AIFailure>(read.text.error());
    }
    call.logSuccess(u"transcription"_s, milliseconds, read.characters);
    co_return *read.text;
}

QString AIService::appleIntelligenceAvailabilityDescription() const {
    switch (languageModel_.availability()) {
    case LanguageModel::Availability::available:
        return tr("Apple Intelligence is ready on this Mac.");
    case LanguageModel::Availability::deviceNotEligible:
        return tr("This Mac doesn’t support Apple Intelligence.");
    case LanguageModel::Availability::notEnabled:
        return tr("Turn on Apple Intelligence in System Settings > Apple Intelligence & Siri.");
    case LanguageModel::Availability::modelNotReady:
        return tr("The on-device model isn’t ready yet. It may still be downloading.");
    case LanguageModel::Availability::unknown:
        return tr("Apple Intelligence isn’t available right now.");
    }
    Q_UNREACHABLE();
}

} // namespace velorin

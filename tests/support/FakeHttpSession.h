/// HTTP without a network: keeps the requests, and gives the answer that the test has laid down.
#pragma once

#include "platform/Gate.h"
#include "platform/HttpSession.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <memory>
#include <vector>

namespace velorin {

class FakeHttpSession final : public HttpSession {
public:
    std::vector<HttpRequest> requests;
    HttpResult answer = HttpResponse{200, "{}"};
    Gate gate{true};

    /// A server that answers each request when the test says so.
    bool isSlow = false;
    struct Pending {
        Gate isAnswered{false};
        HttpResult answer;
        std::size_t request = 0;
    };
    std::vector<std::shared_ptr<Pending>> pending;

    QCoro::Task<HttpResult> send(HttpRequest request) override {
        requests.push_back(std::move(request));
        if (isSlow) {
            const auto mine = std::make_shared<Pending>();
            mine->request = requests.size() - 1;
            pending.push_back(mine);
            co_await mine->isAnswered.opened();
            co_return mine->answer;
        }
        co_await gate.opened();
        co_return std::as_const(answer); // a task moves what is not const
    }
    void answerPending(std::size_t index, HttpResult with) {
        const auto its = pending.at(index);
        pending.erase(pending.begin() + static_cast<std::ptrdiff_t>(index));
        its->answer = std::move(with);
        its->isAnswered.open();
    }

    [[nodiscard]] static HttpResult chatAnswer(const QString& content) {
        FakeHttpSession other;
        other.answerChat(content);
        return other.answer;
    }

    void answerChat(const QString& content) {
        const QJsonObject message{{QStringLiteral("content"), content}};
        const QJsonObject choice{{QStringLiteral("message"), message}};
        answer = HttpResponse{
            200, QJsonDocument(QJsonObject{{QStringLiteral("choices"), QJsonArray{choice}}}).toJson()};
    }
    void answerTranscription(const QString& text) {
        answer = HttpResponse{200, QJsonDocument(QJsonObject{{QStringLiteral("text"), text}}).toJson()};
    }
    /// The user's message of a request.
    [[nodiscard]] QString userMessage(std::size_t index = 0) const { return message(index, 1); }
    [[nodiscard]] QString systemMessage(std::size_t index = 0) const { return message(index, 0); }

private:
    [[nodiscard]] QString message(std::size_t index, int position) const {
        const auto body = QJsonDocument::fromJson(requests.at(index).body);
        return body[QStringLiteral("messages")][position][QStringLiteral("content")].toString();
    }
};

} // namespace velorin

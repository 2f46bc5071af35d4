/// HTTP over Qt Network: certificates are always verified, connections are kept and HTTP/2 is spoken where
/// the server does, and the desktop's proxy is used except for this machine itself.
///
/// Redirects: a 307 or 308 to the same scheme, host and port is followed; every other one is handed out as
/// the reply that it is, so that a key never reaches a host that the user did not name. Replies are asked for
/// and taken uncompressed.
#pragma once

#include "platform/Clock.h"
#include "platform/HttpSession.h"

#include <QNetworkAccessManager>
#include <QSslConfiguration>

#include <chrono>
#include <memory>
#include <unordered_set>

namespace velorin {

class QtHttpSession final : public HttpSession {
public:
    struct Limits {
        std::chrono::milliseconds silence; ///< Without a byte in either direction.
        std::chrono::milliseconds whole;   ///< From the call to the last byte.
        qint64 replyBytes;
    };
    /// For texts, and for recordings.
    static constexpr Limits chat{std::chrono::seconds(45), std::chrono::seconds(60), 16LL << 20};
    static constexpr Limits transcription{std::chrono::seconds(120), std::chrono::seconds(180), 16LL << 20};

    QtHttpSession(Clock& clock, Limits limits,
                  QSslConfiguration tls = QSslConfiguration::defaultConfiguration());
    ~QtHttpSession() override;

    QCoro::Task<HttpResult> send(HttpRequest request) override;

private:
    class Exchange;
    class KnownProxies;

    void makeManager();

    Clock& clock_;
    Limits limits_;
    QSslConfiguration tls_;
    std::unique_ptr<QNetworkAccessManager> manager_; ///< Made for the first request.
    KnownProxies* proxies_ = nullptr;                ///< The manager's.
    std::unordered_set<std::shared_ptr<Exchange>> exchanges_;
};

} // namespace velorin

/// HTTP, as a port: one POST, one whole reply.
///
///     const HttpResult result = co_await session.send({.url = url, .headers = …, .body = json});
///
/// A session has time-outs of its own, keeps connections for later requests, and keeps nothing else: no
/// cache, no cookies, no credentials. Every request accepts JSON. Main thread; the wait resumes there. If the
/// session ends first, who waits is never resumed.
#pragma once

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QList>
#include <QString>
#include <QUrl>

#include <tl/expected.hpp>

namespace velorin {

struct HttpHeader {
    QByteArray name;
    QByteArray value;
};

struct HttpRequest {
    QUrl url;
    QList<HttpHeader> headers;
    QByteArray body;
};

struct HttpResponse {
    int status = 0;
    QByteArray body;
};

/// There is no whole reply: no connection, a certificate that is not trusted, a time-out, a reply that is cut
/// short or too large.
struct HttpFailure {
    QString sentence; ///< For the user.

    bool operator==(const HttpFailure&) const = default;
};

using HttpResult = tl::expected<HttpResponse, HttpFailure>;

class HttpSession {
public:
    virtual ~HttpSession() = default;

    virtual QCoro::Task<HttpResult> send(HttpRequest request) = 0;
};

} // namespace velorin

#include "platform/linux/network/QtHttpSession.h"
#include "platform/linux/desktop/SystemClock.h"
#include "tests/support/Awaited.h"
#include "tests/support/provider/TestProvider.h"

#include <QElapsedTimer>
#include <QTcpServer>

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr QtHttpSession::Limits patient{10s, 20s, 16LL << 20};

class AQtHttpSession : public testing::Test {
protected:
    HttpResult send(const QUrl& url) { return sendWith(url, patient); }

    HttpResult sendWith(const QUrl& url, QtHttpSession::Limits limits) {
        QtHttpSession session(clock, limits, provider.trust());
        return awaited(session.send(request(url)));
    }

    static HttpRequest request(const QUrl& url) {
        return {.url = url,
                .headers = {{"Content-Type", "application/json"}, {"Authorization", "Bearer secret"}},
                .body = "{}"};
    }

    QString failure(const HttpResult& result) {
        EXPECT_FALSE(result.has_value()) << "status " << (result ? result->status : 0);
        return result ? QString() : result.error().sentence;
    }

    QJsonObject lastRequest() { return provider.requests().last().toObject(); }

    SystemClock clock;
    TestProvider provider;
};

TEST_F(AQtHttpSession, PostsAndGivesTheWholeReply) {
    const auto reply = send(provider.url(u"ok"_s));
    ASSERT_TRUE(reply) << reply.error().sentence.toStdString();
    EXPECT_EQ(reply->status, 200);
    EXPECT_TRUE(reply->body.startsWith("{\"choices\""));
    const QJsonObject headers = lastRequest()[u"headers"].toObject();
    EXPECT_EQ(lastRequest()[u"method"].toString(), u"POST"_s);
    EXPECT_EQ(headers[u"accept"].toString(), u"application/json"_s);
    EXPECT_EQ(headers[u"accept-encoding"].toString(), u"identity"_s);
    EXPECT_EQ(headers[u"authorization"].toString(), u"Bearer secret"_s);
    EXPECT_FALSE(headers.contains(u"cookie"_s));
}

TEST_F(AQtHttpSession, KeepsItsConnection) {
    QtHttpSession session(clock, patient, provider.trust());
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(awaited(session.send(request(provider.url(u"ok"_s, u"good"_s)))));
    EXPECT_EQ(provider.connections(), 1);
}

TEST_F(AQtHttpSession, SpeaksHttp2WhereTheServerDoes) {
    QtHttpSession session(clock, patient, provider.trust());
    for (int i = 0; i < 3; ++i) {
        const auto reply = awaited(session.send(request(provider.url(u"ok"_s, u"http2"_s))));
        ASSERT_TRUE(reply) << reply.error().sentence.toStdString();
        EXPECT_EQ(reply->status, 200);
        EXPECT_TRUE(reply->body.startsWith("{\"choices\""));
    }
    EXPECT_EQ(provider.connections(), 1);
    EXPECT_EQ(provider.requests().size(), 3);
    EXPECT_EQ(lastRequest()[u"path"].toString(), u"HTTP/2"_s);
}

TEST_F(AQtHttpSession, HandsOutRefusalsWithTheirBodies) {
    for (const int status : {400, 401, 403, 404, 429, 500, 503}) {
        const auto reply = send(provider.url(u"status-%1-json"_s.arg(status)));
        ASSERT_TRUE(reply) << status << ": " << reply.error().sentence.toStdString();
        EXPECT_EQ(reply->status, status);
        EXPECT_TRUE(reply->body.contains("The server says no.")) << status;
    }
}

TEST_F(AQtHttpSession, FailsWithTheSystemsOwnWordsWithoutAServer) {
    QTcpServer closed;
    closed.listen(QHostAddress::LocalHost);
    const quint16 port = closed.serverPort();
    closed.close();
    EXPECT_EQ(failure(send(QUrl(u"http://127.0.0.1:%1/v1"_s.arg(port)))), u"Connection refused"_s);
}

TEST_F(AQtHttpSession, ARequestThatIsResetIsMadeNoSecondTime) {
    for (const auto& mode : {u"reset"_s, u"resetatonce"_s, u"nothttp"_s}) {
        SCOPED_TRACE(mode.toStdString());
        const auto before = provider.requests().size();
        EXPECT_EQ(failure(send(provider.url(mode))), u"Connection closed"_s);
        EXPECT_EQ(provider.requests().size(), before + 1);
    }
}

TEST_F(AQtHttpSession, AKeptConnectionThatTheServerHasClosedIsReplacedOnce) {
    QtHttpSession session(clock, patient, provider.trust());
    ASSERT_TRUE(awaited(session.send(request(provider.url(u"ok"_s)))));
    // The server hangs up on the second request of each connection.
    const auto reply = awaited(session.send(request(provider.url(u"onlyfirst"_s))));
    ASSERT_TRUE(reply) << reply.error().sentence.toStdString();
    EXPECT_EQ(reply->status, 200);
    EXPECT_EQ(provider.connections(), 2);
}

TEST_F(AQtHttpSession, AReplyThatIsCutShortIsNone) {
    EXPECT_NE(failure(send(provider.url(u"toolong"_s))), QString());
}

TEST_F(AQtHttpSession, AReplyThatIsNoHttpIsNone) {
    EXPECT_NE(failure(send(provider.url(u"nothttp"_s))), QString());
}

TEST_F(AQtHttpSession, TakesNoMoreThanItsLimit) {
    for (const auto& mode : {u"huge"_s, u"hugechunked"_s})
        EXPECT_EQ(failure(send(provider.url(mode))), u"The server’s reply is too large."_s);
}

TEST_F(AQtHttpSession, UnpacksNothing) {
    const auto reply = send(provider.url(u"bomb"_s));
    ASSERT_TRUE(reply);
    EXPECT_LT(reply->body.size(), 1 << 20);
}

TEST_F(AQtHttpSession, GivesUpAServerThatIsSilent) {
    QElapsedTimer watch;
    watch.start();
    EXPECT_EQ(failure(sendWith(provider.url(u"hang"_s), {300ms, 20s, 1 << 20})), u"The request timed out."_s);
    EXPECT_LT(watch.elapsed(), 5000);
}

TEST_F(AQtHttpSession, GivesUpAServerThatTakesTooLongForTheWhole) {
    // Every byte comes well within the time for silence; all of them would take three seconds.
    EXPECT_EQ(failure(sendWith(provider.url(u"drip"_s), {1s, 800ms, 1 << 20})), u"The request timed out."_s);
}

TEST_F(AQtHttpSession, WaitsForASlowServerThatKeepsSending) {
    const auto reply = sendWith(provider.url(u"drip"_s), {2s, 30s, 1 << 20});
    ASSERT_TRUE(reply) << reply.error().sentence.toStdString();
    EXPECT_TRUE(reply->body.endsWith("}"));
}

TEST_F(AQtHttpSession, FollowsARedirectWithinTheServerWithTheSameRequest) {
    for (const auto& mode : {u"redirect-same"_s, u"redirect-relative"_s}) {
        const auto reply = send(provider.url(mode));
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->status, 200);
        EXPECT_EQ(lastRequest()[u"path"].toString(), u"/ok/v1/chat/completions"_s);
        EXPECT_EQ(lastRequest()[u"method"].toString(), u"POST"_s);
    }
}

TEST_F(AQtHttpSession, FollowsNoRedirectToAnotherServerOrWithoutEncryption) {
    for (const auto& [mode, kind] : {std::pair{u"redirect-host"_s, u"http"_s},
                                     {u"redirect-http"_s, u"good"_s},
                                     {u"redirect-found"_s, u"http"_s}}) {
        const auto before = provider.requests().size();
        const auto reply = send(provider.url(mode, kind));
        ASSERT_TRUE(reply) << reply.error().sentence.toStdString();
        EXPECT_EQ(reply->status / 100, 3);
        EXPECT_EQ(provider.requests().size(), before + 1) << mode.toStdString();
    }
}

TEST_F(AQtHttpSession, EndsARedirectInCircles) {
    const auto reply = send(provider.url(u"redirect-loop"_s));
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->status, 307);
    EXPECT_EQ(provider.requests().size(), 6);
}

TEST_F(AQtHttpSession, TrustsACertificateOfItsAuthorityOnly) {
    EXPECT_TRUE(send(provider.url(u"ok"_s, u"good"_s)));
    EXPECT_THAT(failure(send(provider.url(u"ok"_s, u"expired"_s))).toStdString(),
                testing::HasSubstr("expired"));
    EXPECT_THAT(failure(send(provider.url(u"ok"_s, u"wrong"_s))).toStdString(),
                testing::HasSubstr("host name did not match"));
    QtHttpSession stranger(clock, patient);
    EXPECT_NE(failure(awaited(stranger.send(request(provider.url(u"ok"_s, u"good"_s))))), QString());
    EXPECT_EQ(provider.requests().size(), 1);
}

TEST_F(AQtHttpSession, SpeaksNothingButHttp) {
    EXPECT_EQ(failure(send(QUrl(u"file:///etc/passwd"_s))), u"The address is neither http nor https."_s);
    EXPECT_EQ(failure(send(QUrl(u"ftp://localhost/v1"_s))), u"The address is neither http nor https."_s);
}

TEST_F(AQtHttpSession, GivesUpAProxyThatHangs) {
    QTcpServer proxy;
    ASSERT_TRUE(proxy.listen(QHostAddress::LocalHost));
    qputenv("http_proxy", QByteArray("http://127.0.0.1:" + QByteArray::number(proxy.serverPort())));
    const auto result = sendWith(QUrl(u"http://provider.invalid/v1"_s), {500ms, 5s, 1 << 20});
    qunsetenv("http_proxy");
    EXPECT_EQ(failure(result), u"The request timed out."_s);
    EXPECT_TRUE(proxy.hasPendingConnections());
}

TEST_F(AQtHttpSession, ThisMachineNeedsNoProxy) {
    qputenv("http_proxy", "http://127.0.0.1:9");
    EXPECT_TRUE(send(provider.url(u"ok"_s)));
    qunsetenv("http_proxy");
}

TEST_F(AQtHttpSession, AnswersSeveralAtOnce) {
    QtHttpSession session(clock, {2s, 20s, 1 << 20}, provider.trust());
    auto silent = session.send(request(provider.url(u"hang"_s)));
    EXPECT_TRUE(awaited(session.send(request(provider.url(u"ok"_s)))));
    EXPECT_FALSE(silent.isReady());
    EXPECT_FALSE(awaited(std::move(silent)));
}

} // namespace
} // namespace velorin

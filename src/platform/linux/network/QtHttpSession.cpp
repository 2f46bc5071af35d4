#include "platform/linux/network/QtHttpSession.h"

#include "platform/Answer.h"

#include <QCoreApplication>
#include <QHash>
#include <QHostAddress>
#include <QIODevice>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QThreadPool>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int mostRedirects = 5;
constexpr int temporaryRedirect = 307;
constexpr int permanentRedirect = 308;

QString tr(const char* text) { return QCoreApplication::translate("HttpSession", text); }

bool isThisMachine(const QUrl& url) {
    return url.host() == "localhost"_L1 || QHostAddress(url.host()).isLoopback();
}

bool isSameOrigin(const QUrl& a, const QUrl& b) {
    const auto port = [](const QUrl& url) { return url.port(url.scheme() == "https"_L1 ? 443 : 80); };
    return a.scheme() == b.scheme() && a.host() == b.host() && port(a) == port(b);
}

/// Errors of the connection and of the proxy; those above are replies that are errors by their status alone.
bool isTransportError(QNetworkReply::NetworkError error) {
    constexpr int last = 199;
    return error != QNetworkReply::NoError && static_cast<int>(error) <= last;
}

QNetworkRequest networkRequest(const HttpRequest& request, const QSslConfiguration& tls) {
    QNetworkRequest result(request.url);
    result.setSslConfiguration(tls);
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    result.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    result.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    result.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    result.setRawHeader("Accept", "application/json");
    // A few bytes must not become gigabytes here.
    result.setRawHeader("Accept-Encoding", "identity");
    for (const HttpHeader& header : request.headers)
        result.setRawHeader(header.name, header.value);
    return result;
}

} // namespace

/// A request that is read once: Qt would send it again by itself when a connection ends without an answer,
/// and the server may have done by then what it was asked.
class OneTimeBody final : public QIODevice {
public:
    explicit OneTimeBody(QByteArray body) : body_(std::move(body)) { open(ReadOnly | Unbuffered); }
    [[nodiscard]] qint64 size() const override { return body_.size(); }
    bool seek(qint64 position) override { return position == pos() && QIODevice::seek(position); }

protected:
    qint64 readData(char* data, qint64 most) override {
        const auto piece = QByteArrayView(body_).sliced(pos()).first(std::min(most, body_.size() - pos()));
        std::ranges::copy(piece, data);
        return piece.size();
    }
    qint64 writeData(const char* /*data*/, qint64 /*size*/) override { return -1; }

private:
    QByteArray body_;
};

/// The proxies that were found for the hosts so far: Qt asks for them where nothing may take long.
class QtHttpSession::KnownProxies final : public QNetworkProxyFactory {
public:
    QList<QNetworkProxy> queryProxy(const QNetworkProxyQuery& query) override {
        return proxies_.value(query.peerHostName(), {QNetworkProxy(QNetworkProxy::NoProxy)});
    }
    void learn(const QString& host, const QList<QNetworkProxy>& proxies) { proxies_[host] = proxies; }

private:
    QHash<QString, QList<QNetworkProxy>> proxies_;
};

/// One request on its way, with its redirects and time-outs.
class QtHttpSession::Exchange final : public std::enable_shared_from_this<Exchange> {
public:
    Exchange(QtHttpSession& session, HttpRequest request) : session_(session), request_(std::move(request)) {
        whole_ =
            session_.clock_.after(session_.limits_.whole, [this] { fail(tr("The request timed out.")); });
        hear();
    }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
    ~Exchange() { drop(); }

    void start() {
        if (isThisMachine(request_.url)) {
            post();
            return;
        }
        // The desktop's settings may have to be fetched from somewhere, which is no work for the main thread.
        QThreadPool::globalInstance()->start([weak = weak_from_this(), url = request_.url] {
            const auto proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(url));
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [weak, url, proxies] {
                    if (const auto exchange = weak.lock())
                        exchange->startThrough(url.host(), proxies);
                },
                Qt::QueuedConnection);
        });
    }

    /// The session is gone: nobody is to be told anything any more.
    void forget() {
        silence_ = {};
        whole_ = {};
        drop();
    }

    [[nodiscard]] auto result() { return result_.given(); }

private:
    void startThrough(const QString& host, const QList<QNetworkProxy>& proxies) {
        if (isForgotten_)
            return;
        session_.proxies_->learn(host, proxies);
        post();
    }

    void post() {
        drop();
        received_.clear();
        isForgotten_ = false;
        isConnectionNew_ = false;
        auto body = std::make_unique<OneTimeBody>(request_.body);
        reply_ = session_.manager_->post(networkRequest(request_, session_.tls_), body.get());
        body.release()->setParent(reply_); // The reply may read it as long as it is there.
        QObject::connect(reply_, &QNetworkReply::socketStartedConnecting, &context_,
                         [this] { isConnectionNew_ = true; });
        const auto onActivity = [this] { hear(); };
        QObject::connect(reply_, &QNetworkReply::encrypted, &context_, onActivity);
        QObject::connect(reply_, &QNetworkReply::uploadProgress, &context_, onActivity);
        QObject::connect(reply_, &QNetworkReply::metaDataChanged, &context_, onActivity);
        QObject::connect(reply_, &QNetworkReply::readyRead, &context_, [this] { take(); });
        QObject::connect(reply_, &QNetworkReply::finished, &context_, [this] { end(); });
    }

    /// Who waits goes on within this call, and may be what holds us.
    void fail(const QString& sentence) {
        const auto self = shared_from_this();
        forget();
        result_.give(tl::unexpected(HttpFailure{sentence}));
    }

    void hear() {
        silence_ =
            session_.clock_.after(session_.limits_.silence, [this] { fail(tr("The request timed out.")); });
    }

    /// Whether the reply is still of a size that is taken.
    bool take() {
        hear();
        received_ += reply_->readAll();
        const bool isTooLarge = received_.size() > session_.limits_.replyBytes;
        if (isTooLarge)
            fail(tr("The server’s reply is too large."));
        return !isTooLarge;
    }

    void end() {
        const auto self = shared_from_this();
        const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (status == 0 && reply_->error() == QNetworkReply::ContentReSendError) {
            endUnanswered();
            return;
        }
        if (status == 0 || isTransportError(reply_->error())) {
            fail(reply_->errorString());
            return;
        }
        if (!take())
            return;
        if (isCutShort()) {
            fail(tr("Connection closed"));
            return;
        }
        if (const QUrl next = redirected(status); next.isValid()) {
            request_.url = next;
            post();
            return;
        }
        forget();
        result_.give(HttpResponse{status, received_});
    }

    /// Qt takes a connection that is reset at the wrong moment for the end of the reply.
    [[nodiscard]] bool isCutShort() const {
        bool isTold = false;
        const qint64 length = reply_->rawHeader("Content-Length").toLongLong(&isTold);
        return isTold && received_.size() < length;
    }

    /// The server has hung up without an answer. On a connection that was kept it had done so while nobody
    /// asked it anything; a new one is worth one try.
    void endUnanswered() {
        if (isConnectionNew_ || std::exchange(isSecondTry_, true))
            fail(tr("Connection closed"));
        else
            post();
    }

    /// Where the request goes on; invalid when its reply is to be handed out.
    [[nodiscard]] QUrl redirected(int status) {
        if (status != temporaryRedirect && status != permanentRedirect)
            return {};
        const QUrl next =
            request_.url.resolved(QUrl::fromEncoded(reply_->rawHeader("Location"), QUrl::StrictMode));
        return isSameOrigin(request_.url, next) && redirects_++ < mostRedirects ? next : QUrl();
    }

    void drop() {
        isForgotten_ = true;
        if (!reply_)
            return;
        reply_->disconnect(&context_);
        reply_->abort();
        reply_->deleteLater();
        reply_.clear();
    }

    QtHttpSession& session_;
    HttpRequest request_;
    Answer<HttpResult> result_;
    QObject context_;
    QPointer<QNetworkReply> reply_;
    QByteArray received_;
    int redirects_ = 0;
    bool isConnectionNew_ = false;
    bool isSecondTry_ = false;
    bool isForgotten_ = false;
    Subscription silence_;
    Subscription whole_;
};

QtHttpSession::QtHttpSession(Clock& clock, Limits limits, QSslConfiguration tls)
    : clock_(clock), limits_(limits), tls_(std::move(tls)) {}

QtHttpSession::~QtHttpSession() {
    for (const auto& exchange : exchanges_)
        exchange->forget();
}

void QtHttpSession::makeManager() {
    auto proxies = std::make_unique<KnownProxies>();
    proxies_ = proxies.get();
    manager_ = std::make_unique<QNetworkAccessManager>();
    manager_->setProxyFactory(proxies.release()); // The manager's from here on.
}

QCoro::Task<HttpResult> QtHttpSession::send(HttpRequest request) {
    if (request.url.scheme() != "https"_L1 && request.url.scheme() != "http"_L1)
        co_return tl::unexpected(HttpFailure{tr("The address is neither http nor https.")});
    if (!manager_)
        makeManager();
    const auto exchange = std::make_shared<Exchange>(*this, std::move(request));
    exchanges_.insert(exchange);
    exchange->start();
    HttpResult result = co_await exchange->result();
    exchanges_.erase(exchange);
    co_return result;
}

} // namespace velorin

/// A provider of AI in a process of its own, over HTTP and HTTPS, which misbehaves in the way that its
/// address names.
///
///     TestProvider provider;
///     session.send({.url = provider.url(u"reset"_s)})
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QSslConfiguration>
#include <QUrl>

namespace velorin {

class TestProvider final {
public:
    TestProvider();
    TestProvider(const TestProvider&) = delete;
    TestProvider& operator=(const TestProvider&) = delete;
    ~TestProvider();

    /// For a configuration; `kind` is "http", "good", "expired" or "wrong".
    [[nodiscard]] QString endpoint(const QString& mode, const QString& kind = QStringLiteral("http")) const;
    /// Of the chat requests.
    [[nodiscard]] QUrl url(const QString& mode, const QString& kind = QStringLiteral("http")) const;
    /// Trusts the provider's authority.
    [[nodiscard]] QSslConfiguration trust() const;

    /// What it has been asked so far: method, path, headers, body (base64).
    [[nodiscard]] QJsonArray requests() const;
    [[nodiscard]] int connections() const;

private:
    [[nodiscard]] QByteArray asked(const QByteArray& what) const;

    QProcess process_;
    QJsonObject addresses_;
};

} // namespace velorin

#include "tests/support/provider/TestProvider.h"

#include <QFile>
#include <QJsonDocument>
#include <QSslCertificate>
#include <QTcpSocket>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int patience = 20'000; // milliseconds; the machine may be busy

} // namespace

TestProvider::TestProvider() {
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(u"/usr/bin/python3"_s, {u"-B"_s, QStringLiteral(PROVIDER_PROGRAM)});
    while (!process_.canReadLine() && process_.waitForReadyRead(patience)) {
    }
    addresses_ = QJsonDocument::fromJson(process_.readLine()).object();
    if (addresses_.isEmpty())
        qFatal("the test's provider did not start");
}

TestProvider::~TestProvider() {
    process_.closeWriteChannel();
    if (!process_.waitForFinished(patience))
        process_.kill();
}

QString TestProvider::endpoint(const QString& mode, const QString& kind) const {
    return addresses_[kind].toString() + u'/' + mode + u"/v1"_s;
}

QUrl TestProvider::url(const QString& mode, const QString& kind) const {
    return QUrl(endpoint(mode, kind) + u"/chat/completions"_s);
}

QSslConfiguration TestProvider::trust() const {
    auto configuration = QSslConfiguration::defaultConfiguration();
    QFile file(addresses_[u"authority"].toString());
    if (!file.open(QIODevice::ReadOnly))
        qFatal("the test's authority has no certificate");
    configuration.setCaCertificates(QSslCertificate::fromData(file.readAll()));
    return configuration;
}

QJsonArray TestProvider::requests() const { return QJsonDocument::fromJson(asked("/requests")).array(); }

int TestProvider::connections() const {
    // Asking is a connection as well.
    return asked("/connections").toInt() - 1;
}

QByteArray TestProvider::asked(const QByteArray& what) const {
    const QUrl address(addresses_[u"http"].toString());
    QTcpSocket socket;
    socket.connectToHost(address.host(), static_cast<quint16>(address.port()));
    socket.waitForConnected(patience);
    socket.write("GET " + what + " HTTP/1.1\r\n\r\n");
    QByteArray reply;
    const auto isWhole = [&reply] {
        const auto head = reply.indexOf("\r\n\r\n");
        const auto length = reply.indexOf("Content-Length: ");
        return head >= 0 && length >= 0 &&
               reply.size() - head - 4 >=
                   reply.mid(length + 16, reply.indexOf('\r', length) - length - 16).toInt();
    };
    while (!isWhole() && socket.waitForReadyRead(patience))
        reply += socket.readAll();
    return reply.mid(reply.indexOf("\r\n\r\n") + 4);
}

} // namespace velorin

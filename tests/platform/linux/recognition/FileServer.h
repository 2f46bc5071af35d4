/// A web server that a test tells how to behave badly.
///
///     FileServer server;
///     server.files[u"/model"_s].body = content;
///     server.files[u"/model"_s].stopsAfter = 1000;      // closes the connection in the middle
#pragma once

#include <QMap>
#include <QSslConfiguration>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

#include <memory>

namespace velorin {

class FileServer final {
public:
    struct File {
        QByteArray body{};
        int status = 200;
        QByteArray tag = "\"one\"";
        QString location{};        ///< Redirects there.
        qsizetype stopsAfter = -1; ///< Closes the connection after so many bytes of the body.
        qsizetype hangsAfter = -1; ///< Sends no more after so many.
        qsizetype promises = -1;   ///< Says that so many come; −1 tells the truth.
        int bytesASecond = 0;      ///< 0 for as fast as it goes.
        bool knowsRanges = true;
    };

    FileServer() : FileServer(std::make_unique<QTcpServer>(), u"http") {}
    explicit FileServer(const QSslConfiguration& configuration)
        : FileServer(secure(configuration), u"https") {}

    [[nodiscard]] QString address(const QString& path) const {
        return QStringLiteral("%1://localhost:%2%3").arg(scheme_).arg(server_->serverPort()).arg(path);
    }

    QMap<QString, File> files;
    /// The value of the header Range of each request, in order; empty where there was none.
    QList<QByteArray> ranges;
    QList<QByteArray> requests;

private:
    FileServer(std::unique_ptr<QTcpServer> server, QStringView scheme)
        : server_(std::move(server)), scheme_(scheme.toString()) {
        server_->listen(QHostAddress::LocalHost);
        QObject::connect(server_.get(), &QTcpServer::pendingConnectionAvailable, server_.get(), [this] {
            while (QTcpSocket* const socket = server_->nextPendingConnection())
                QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(socket); });
        });
    }

    static std::unique_ptr<QTcpServer> secure(const QSslConfiguration& configuration) {
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(configuration);
        return server;
    }

    static QByteArray header(const QByteArray& request, const QByteArray& name) {
        for (const QByteArray& line : request.split('\n')) {
            const qsizetype colon = line.indexOf(':');
            if (colon > 0 && line.left(colon).toLower() == name)
                return line.mid(colon + 1).trimmed();
        }
        return {};
    }

    void answer(QTcpSocket* socket) {
        const QByteArray request = socket->property("request").toByteArray().append(socket->readAll());
        socket->setProperty("request", request);
        if (!request.contains("\r\n\r\n"))
            return;
        requests.append(request);
        ranges.append(header(request, "range"));
        const File file = files.value(QString::fromUtf8(request.split(' ').value(1)), {{}, 404, {}, {}});
        qsizetype from = 0;
        const bool isSame = header(request, "if-range").isEmpty() || header(request, "if-range") == file.tag;
        if (file.knowsRanges && isSame && ranges.last().startsWith("bytes="))
            from = ranges.last().mid(6).chopped(1).toLongLong();
        send(socket, file, from);
    }

    static void send(QTcpSocket* socket, const File& file, qsizetype from) {
        const QByteArray body = file.body.mid(from);
        QByteArray head("HTTP/1.1 ");
        head.append(QByteArray::number(!file.location.isEmpty() ? 302
                                       : from > 0               ? 206
                                                                : file.status))
            .append(" x\r\n");
        const auto add = [&head](const char* name, const QByteArray& value) {
            head.append(name).append(": ").append(value).append("\r\n");
        };
        add("Content-Length", QByteArray::number(file.promises >= 0 ? file.promises : body.size()));
        add("Connection", "close");
        if (!file.tag.isEmpty())
            add("ETag", file.tag);
        if (!file.location.isEmpty())
            add("Location", file.location.toUtf8());
        if (from > 0)
            add("Content-Range", QByteArray("bytes ")
                                     .append(QByteArray::number(from))
                                     .append('-')
                                     .append(QByteArray::number(file.body.size() - 1))
                                     .append('/')
                                     .append(QByteArray::number(file.body.size())));
        socket->write(head.append("\r\n"));
        if (file.bytesASecond > 0)
            return trickle(socket, body, file.bytesASecond);
        if (file.hangsAfter >= 0) {
            socket->write(body.left(file.hangsAfter));
            return;
        }
        socket->write(file.stopsAfter >= 0 ? body.left(file.stopsAfter) : body);
        socket->disconnectFromHost();
    }

    static void trickle(QTcpSocket* socket, const QByteArray& body, int bytesASecond) {
        auto* const timer = new QTimer(socket);
        QObject::connect(timer, &QTimer::timeout, socket, [socket, body, sent = qsizetype{0}]() mutable {
            socket->write(body.mid(sent++, 1));
            socket->flush();
        });
        timer->start(1000 / bytesASecond);
    }

    std::unique_ptr<QTcpServer> server_;
    QString scheme_;
};

} // namespace velorin

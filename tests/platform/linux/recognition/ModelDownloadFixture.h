/// A model of two files, a server that has it, and a place for it.
#pragma once

#include "platform/linux/recognition/ModelDownload.h"
#include "tests/platform/linux/recognition/FileServer.h"

#include <QCryptographicHash>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace velorin {

inline QByteArray content(char seed, qsizetype size) {
    QByteArray bytes(size, seed);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(i * 31 + i / 256 + seed);
    return bytes;
}

struct ModelDownloadFixture : testing::Test {
    QTemporaryDir home;
    QString place = home.filePath(QStringLiteral("models"));
    ModelStore store{{}, place};
    FileServer server;
    QNetworkAccessManager network;
    ModelDownload::Patience patience{std::chrono::milliseconds(2000), std::chrono::milliseconds(1500), 100,
                                     std::chrono::milliseconds(20)};
    Model model;
    QByteArray first = content(1, 200'000);
    QByteArray second = content(2, 50'000);
    bool loads = true;
    int trials = 0;
    QList<std::pair<qint64, qint64>> progress;

    ModelDownloadFixture() {
        model.id = QStringLiteral("a-model");
        add(QStringLiteral("first"), first);
        add(QStringLiteral("second"), second);
    }

    void add(const QString& name, const QByteArray& bytes) {
        const QString path = u'/' + name;
        server.files[path].body = bytes;
        model.files.push_back({name, server.address(path), bytes.size(),
                               QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex()});
    }

    /// As of a publisher that gives no digests and, of the size, an idea.
    void forgetDigests() {
        for (ModelFile& file : model.files) {
            file.digest.clear();
            file.size += 1000;
        }
    }

    std::unique_ptr<ModelDownload> make() {
        return std::make_unique<ModelDownload>(
            network, store, model,
            [this](const QString&, const Model&) {
                ++trials;
                return loads;
            },
            patience);
    }

    tl::expected<void, RecognitionError> download() {
        const auto one = make();
        return QCoro::waitFor(one->run([this](qint64 received, qint64 total) {
            progress.append({received, total});
        }));
    }

    QString words() {
        const auto outcome = download();
        return outcome ? QString() : outcome.error().description;
    }

    QString part() const { return place + QStringLiteral("/incomplete/a-model/first.part"); }
    FileServer::File& firstFile() { return server.files[QStringLiteral("/first")]; }
};

} // namespace velorin

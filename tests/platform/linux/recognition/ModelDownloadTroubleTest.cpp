// Downloads that a full disk or a killed process cuts short, and processes that want the same model.
#include "tests/platform/linux/recognition/ModelDownloadFixture.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/WaitUntil.h"

#include <QDir>
#include <QProcess>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

struct ModelDownloadTrouble : ModelDownloadFixture {
    /// Another process that downloads the same.
    void startAnother(QProcess& process) const {
        QStringList arguments{place};
        for (const ModelFile& file : model.files)
            arguments +=
                {file.name, file.address, QString::number(file.size), QString::fromLatin1(file.digest)};
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QStringLiteral(VELORIN_DOWNLOADER), arguments);
    }

    static bool hasEnded(const QProcess& process) { return process.state() == QProcess::NotRunning; }
};

TEST_F(ModelDownloadTrouble, GoesOnAfterAKill) {
    firstFile().hangsAfter = 120'000;
    QProcess other;
    startAnother(other);
    ASSERT_TRUE(waitUntil([&] { return QFileInfo(part()).size() == 120'000; }));
    other.kill();
    ASSERT_TRUE(waitUntil([&] { return hasEnded(other); }));
    EXPECT_EQ(other.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(store.installed(model), std::nullopt);
    firstFile().hangsAfter = -1;
    ASSERT_TRUE(download());
    EXPECT_TRUE(server.ranges.contains("bytes=120000-"));
    EXPECT_TRUE(store.verified(model));
}

TEST_F(ModelDownloadTrouble, IsDoneOnceByTwoProcesses) {
    QProcess one;
    QProcess other;
    startAnother(one);
    startAnother(other);
    ASSERT_TRUE(waitUntil([&] { return hasEnded(one) && hasEnded(other); }, std::chrono::seconds(60)));
    EXPECT_EQ(one.exitCode(), 0);
    EXPECT_EQ(other.exitCode(), 0);
    EXPECT_EQ(server.requests.size(), 2);
    EXPECT_TRUE(store.verified(model));
}

/// There is room when the download begins; somebody else takes it meanwhile.
struct ModelDownloadOnAFullDisk : ModelDownloadTrouble {
    SmallDisk disk{u"80m"_s};
    QByteArray large = content(3, 12'000'000);

    ModelDownloadOnAFullDisk() {
        place = disk.path() + u"/models"_s;
        server.files[u"/first"_s].body = large;
        model.files[0].size = large.size();
        model.files[0].digest = QCryptographicHash::hash(large, QCryptographicHash::Sha256).toHex();
    }
};

TEST_F(ModelDownloadOnAFullDisk, SaysSoAndGoesOnWhenThereIsRoom) {
    ASSERT_TRUE(disk.isThere());
    const ModelStore here({}, place);
    const auto run = [&](const AssetInstallationRequest::Progress& onProgress) {
        ModelDownload one(
            network, here, model, [](const QString&, const Model&) { return true; }, patience);
        return QCoro::waitFor(one.run(onProgress));
    };
    const auto outcome = run([&](qint64 received, qint64) {
        if (received < large.size())
            disk.fill();
    });
    ASSERT_FALSE(outcome);
    EXPECT_TRUE(outcome.error().description.contains(u"not enough space"_s));
    EXPECT_EQ(here.installed(model), std::nullopt);
    const qint64 kept = QFileInfo(part()).size();
    EXPECT_GT(kept, 0);
    EXPECT_LT(kept, large.size());

    EXPECT_TRUE(run({}).error().description.contains(u"not enough space"_s));
    EXPECT_EQ(server.requests.size(), 1);

    disk.makeRoom();
    const auto again = run({});
    ASSERT_TRUE(again) << again.error().description.toStdString();
    EXPECT_TRUE(server.ranges.contains("bytes=" + QByteArray::number(kept) + '-'));
    EXPECT_TRUE(here.verified(model));
}

} // namespace velorin

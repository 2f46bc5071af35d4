#include "tests/platform/linux/recognition/ModelDownloadFixture.h"
#include "tests/support/WaitUntil.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace velorin {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using testing::IsEmpty;

struct ModelDownloadTest : ModelDownloadFixture {};

TEST_F(ModelDownloadTest, PutsAWholeModelInPlace) {
    ASSERT_TRUE(download());
    EXPECT_EQ(store.verified(model), QString(place + u"/a-model"_s));
    EXPECT_EQ(progress.last(), std::pair(qint64{250'000}, qint64{250'000}));
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(trials, 0);
    EXPECT_THAT(QDir(place + u"/incomplete"_s).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), IsEmpty());
    EXPECT_EQ(QDir(place + u"/a-model"_s).entryList(QDir::Files), (QStringList{u"first"_s, u"second"_s}));
}

TEST_F(ModelDownloadTest, MakesFoldersForTheUserAloneWhateverTheMask) {
    const mode_t before = umask(0);
    EXPECT_TRUE(download());
    umask(before);
    for (const QString& folder : {place, QString(place + u"/incomplete"_s), QString(place + u"/a-model"_s)})
        EXPECT_EQ(QFile::permissions(folder) & 0x0077, QFile::Permissions()) << qPrintable(folder);
}

TEST_F(ModelDownloadTest, LeavesTheUsersFilesBesideADamagedModelInPlace) {
    const QString folder = place + u"/a-model/"_s;
    ASSERT_TRUE(QDir().mkpath(folder + u"notes"_s));
    for (const QString& name : {u"first"_s, u"first.backup"_s, u"my.validator"_s, u"notes/one"_s}) {
        QFile file(folder + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(name.toUtf8());
    }
    ASSERT_TRUE(download());
    EXPECT_TRUE(store.verified(model));
    for (const QString& name : {u"first.backup"_s, u"my.validator"_s, u"notes/one"_s}) {
        QFile file(folder + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
        EXPECT_EQ(file.readAll(), name.toUtf8());
    }
}

TEST_F(ModelDownloadTest, LeavesTheUsersFilesBesideAModelThatDoesNotLoad) {
    forgetDigests();
    loads = false;
    const QString folder = place + u"/incomplete/a-model/"_s;
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile notes(folder + u"notes"_s);
    ASSERT_TRUE(notes.open(QIODevice::WriteOnly));
    EXPECT_FALSE(download());
    EXPECT_EQ(QDir(folder).entryList(QDir::Files), QStringList{u"notes"_s});
}

TEST_F(ModelDownloadTest, AsksForNothingThatIsThere) {
    ASSERT_TRUE(download());
    ASSERT_TRUE(download());
    EXPECT_EQ(server.requests.size(), 2);
}

TEST_F(ModelDownloadTest, GoesOnWhereItStopped) {
    firstFile().stopsAfter = 120'000;
    EXPECT_TRUE(words().contains(u"goes on where it stopped"_s));
    EXPECT_EQ(store.installed(model), std::nullopt);
    EXPECT_EQ(QFileInfo(part()).size(), 120'000);
    firstFile().stopsAfter = -1;
    ASSERT_TRUE(download());
    EXPECT_TRUE(server.ranges.contains("bytes=120000-"));
    EXPECT_TRUE(store.verified(model));
}

TEST_F(ModelDownloadTest, BeginsAnewWithAServerThatKnowsNoParts) {
    firstFile().stopsAfter = 120'000;
    ASSERT_FALSE(download());
    firstFile().stopsAfter = -1;
    firstFile().knowsRanges = false;
    ASSERT_TRUE(download());
    EXPECT_TRUE(store.verified(model));
}

TEST_F(ModelDownloadTest, BeginsAnewWhenTheFileWasReplacedMeanwhile) {
    forgetDigests();
    firstFile().stopsAfter = 120'000;
    ASSERT_FALSE(download());
    server.files[u"/first"_s] = {.body = content(9, 210'000), .tag = "\"two\""};
    ASSERT_TRUE(download());
    QFile file(place + u"/a-model/first"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), content(9, 210'000));
}

TEST_F(ModelDownloadTest, TrustsAFirstDownloadWithoutDigestsAndHoldsItToThem) {
    forgetDigests();
    ASSERT_TRUE(download());
    EXPECT_EQ(trials, 1);
    EXPECT_TRUE(store.verified(model));
    QFile file(place + u"/a-model/second"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write("X");
    file.close();
    EXPECT_EQ(ModelStore({}, place).verified(model), std::nullopt);
}

TEST_F(ModelDownloadTest, HoldsAnotherDownloadToTheDigestsOfTheFirst) {
    forgetDigests();
    ASSERT_TRUE(download());
    const QString damaged = place + u"/a-model/second"_s;
    ASSERT_TRUE(QFile::resize(damaged, 10));
    server.files[u"/second"_s] = {.body = content(9, second.size()), .tag = "\"two\""};
    EXPECT_TRUE(words().contains(u"something else"_s));
    EXPECT_EQ(store.installed(model), std::nullopt);
    server.files[u"/second"_s] = {.body = second, .tag = "\"three\""};
    ASSERT_TRUE(download());
    EXPECT_EQ(trials, 1) << "what is known needs no trial";
    EXPECT_TRUE(store.verified(model));
    ASSERT_TRUE(QFile::resize(damaged, 10));
    server.files[u"/second"_s].body = content(9, second.size());
    EXPECT_TRUE(words().contains(u"something else"_s)) << "and it stays known";
}

TEST_F(ModelDownloadTest, StopsAServerThatSendsMuchMoreThanTheTableHas) {
    forgetDigests();
    firstFile().body.append(content(3, 50'000'000));
    EXPECT_TRUE(words().contains(u"something else"_s));
    EXPECT_LE(QFileInfo(part()).size(), 300'000);
    EXPECT_EQ(store.installed(model), std::nullopt);
}

TEST_F(ModelDownloadTest, DropsAModelThatDoesNotLoad) {
    forgetDigests();
    loads = false;
    EXPECT_TRUE(words().contains(u"something else"_s));
    EXPECT_EQ(store.installed(model), std::nullopt);
    EXPECT_FALSE(QFile::exists(place + u"/incomplete/a-model"_s));
}

TEST_F(ModelDownloadTest, NeverUsesWrongBytes) {
    firstFile().body[100] = 'X';
    EXPECT_TRUE(words().contains(u"something else"_s));
    EXPECT_EQ(store.installed(model), std::nullopt);
    firstFile().body = first;
    ASSERT_TRUE(download());
}

TEST_F(ModelDownloadTest, StopsAServerThatSendsTooMuch) {
    firstFile().body.append(content(3, 5'000'000));
    EXPECT_TRUE(words().contains(u"something else"_s));
    EXPECT_LE(QFileInfo(part()).size(), 200'000);
    EXPECT_EQ(store.installed(model), std::nullopt);
}

TEST_F(ModelDownloadTest, FindsOutThatTooLittleCame) {
    firstFile().body.chop(1);
    EXPECT_FALSE(download());
    firstFile().body = first.left(1000);
    firstFile().promises = 200'000;
    EXPECT_FALSE(download());
    EXPECT_EQ(store.installed(model), std::nullopt);
    firstFile() = {.body = first};
    ASSERT_TRUE(download());
}

TEST_F(ModelDownloadTest, SaysThatAServerRefuses) {
    for (const int status : {404, 500, 403}) {
        firstFile().status = status;
        EXPECT_TRUE(words().contains(u"not offered"_s)) << status;
    }
    EXPECT_FALSE(QFile::exists(part()));
}

TEST_F(ModelDownloadTest, GivesUpOnASilentServer) {
    firstFile().hangsAfter = 1000;
    patience.period = 60'000ms;
    patience.silence = 300ms;
    EXPECT_TRUE(words().contains(u"interrupted"_s));
}

TEST_F(ModelDownloadTest, GivesUpOnAServerThatSendsByteByByte) {
    firstFile().bytesASecond = 20;
    EXPECT_TRUE(words().contains(u"too slow"_s));
}

TEST_F(ModelDownloadTest, SaysThatThereIsNoNetwork) {
    model.files[0].address = u"http://localhost:1/first"_s;
    EXPECT_TRUE(words().contains(u"check the network"_s));
    model.files[0].address = u"http://nowhere.invalid/first"_s;
    EXPECT_TRUE(words().contains(u"check the network"_s));
}

TEST_F(ModelDownloadTest, CanBeCancelled) {
    firstFile().hangsAfter = 70'000;
    const auto one = make();
    auto running = one->run([&](qint64 received, qint64) {
        if (received >= 70'000)
            one->cancel();
    });
    const auto outcome = QCoro::waitFor(running);
    ASSERT_FALSE(outcome);
    EXPECT_TRUE(outcome.error().description.contains(u"cancelled"_s));
    EXPECT_EQ(QFileInfo(part()).size(), 70'000);
}

TEST_F(ModelDownloadTest, WaitsForAnotherProcessThatBringsTheSame) {
    ASSERT_TRUE(QDir().mkpath(place + u"/incomplete/a-model"_s));
    QLockFile other(place + u"/incomplete/a-model.lock"_s);
    ASSERT_TRUE(other.lock());
    const auto one = make();
    auto running = one->run({});
    EXPECT_FALSE(waitUntil([&] { return running.isReady(); }, 200ms));
    EXPECT_TRUE(server.requests.isEmpty());
    // The other has it, and is done.
    ASSERT_TRUE(QDir().mkpath(place + u"/a-model"_s));
    for (const auto& [name, bytes] : {std::pair(u"first"_s, first), std::pair(u"second"_s, second)}) {
        QFile file(place + u"/a-model/"_s + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    other.unlock();
    EXPECT_TRUE(QCoro::waitFor(running));
    EXPECT_TRUE(server.requests.isEmpty());
}

TEST_F(ModelDownloadTest, NeedsSpaceBeforeItBegins) {
    model.files[1].size = qint64{1} << 60;
    EXPECT_TRUE(words().contains(u"space"_s));
    EXPECT_TRUE(server.requests.isEmpty());
}

TEST_F(ModelDownloadTest, NeedsAFolderThatCanBeWritten) {
    QFile file(home.filePath(u"models"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_TRUE(words().contains(u"cannot be stored"_s));
}

TEST_F(ModelDownloadTest, ReplacesADamagedModel) {
    ASSERT_TRUE(download());
    QFile file(place + u"/a-model/first"_s);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    ASSERT_EQ(store.installed(model), std::nullopt);
    ASSERT_TRUE(download());
    EXPECT_TRUE(store.verified(model));
}

/// With a certificate of its own, which the program is told to trust.
struct ModelDownloadSecureTest : ModelDownloadTest {
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();

    ModelDownloadSecureTest() {
        QProcess openssl;
        openssl.setWorkingDirectory(home.path());
        openssl.start(u"openssl"_s, {u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s,
                                     u"-keyout"_s, u"key.pem"_s, u"-out"_s, u"cert.pem"_s, u"-subj"_s,
                                     u"/CN=localhost"_s, u"-addext"_s, u"subjectAltName=DNS:localhost"_s});
        EXPECT_TRUE(openssl.waitForFinished());
        QFile key(home.filePath(u"key.pem"_s));
        EXPECT_TRUE(key.open(QIODevice::ReadOnly));
        const auto certificates = QSslCertificate::fromPath(home.filePath(u"cert.pem"_s));
        configuration.setPrivateKey(QSslKey(&key, QSsl::Rsa));
        configuration.setLocalCertificateChain(certificates);
        auto trusting = QSslConfiguration::defaultConfiguration();
        usual = trusting;
        trusting.setCaCertificates(certificates);
        QSslConfiguration::setDefaultConfiguration(trusting);
    }
    ~ModelDownloadSecureTest() override { QSslConfiguration::setDefaultConfiguration(usual); }

    QSslConfiguration usual;
};

TEST_F(ModelDownloadSecureTest, FollowsARedirectToAnotherHostButNoneToAnOpenConnection) {
    FileServer one(configuration);
    FileServer other(configuration);
    one.files[u"/first"_s].location = other.address(u"/elsewhere"_s);
    other.files[u"/elsewhere"_s].body = first;
    model.files[0].address = one.address(u"/first"_s);
    ASSERT_TRUE(download());
    EXPECT_EQ(other.requests.size(), 1);

    ASSERT_TRUE(QDir(place + u"/a-model"_s).removeRecursively());
    one.files[u"/first"_s].location = server.address(u"/first"_s);
    const qsizetype before = server.requests.size();
    EXPECT_FALSE(download());
    EXPECT_EQ(server.requests.size(), before);
}

TEST_F(ModelDownloadSecureTest, RefusesACertificateThatNobodyVouchesFor) {
    QSslConfiguration::setDefaultConfiguration(usual);
    FileServer one(configuration);
    one.files[u"/first"_s].body = first;
    model.files[0].address = one.address(u"/first"_s);
    EXPECT_FALSE(download());
    EXPECT_TRUE(one.requests.isEmpty());
}

} // namespace velorin

#include "platform/linux/desktop/XdgFolders.h"

#include <QDir>
#include <QFile>
#include <QStorageInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

class XdgFoldersOfTheUser : public testing::Test {
protected:
    XdgFoldersOfTheUser() {
        qputenv("XDG_DATA_HOME", home_.filePath(u"data"_s).toLocal8Bit());
        qputenv("XDG_RUNTIME_DIR", home_.path().toLocal8Bit());
    }
    ~XdgFoldersOfTheUser() override {
        qunsetenv("XDG_DATA_HOME");
        qunsetenv("XDG_RUNTIME_DIR");
    }
    QTemporaryDir home_;
    XdgFolders folders_;
};

TEST_F(XdgFoldersOfTheUser, FollowTheDesktopsVariables) {
    EXPECT_EQ(folders_.dataFolder(), home_.filePath(u"data/Velorin"_s));
    EXPECT_EQ(folders_.temporaryFolder(), home_.filePath(u"velorin"_s));
}

TEST_F(XdgFoldersOfTheUser, RecordingsLieInMemoryOrTheSystemsTemporaryFolderWithoutARuntimeFolder) {
    const bool hasMemory = QStorageInfo(u"/dev/shm"_s).fileSystemType() == "tmpfs";
    const QString place = hasMemory ? u"/dev/shm/velorin-"_s : QString(QDir::tempPath() + u"/velorin-"_s);
    qunsetenv("XDG_RUNTIME_DIR");
    EXPECT_TRUE(folders_.temporaryFolder().startsWith(place));
    qputenv("XDG_RUNTIME_DIR", "/nonexistent");
    EXPECT_TRUE(folders_.temporaryFolder().startsWith(place));
}

TEST_F(XdgFoldersOfTheUser, LeftoversOfAKilledProcessGoAndNothingElse) {
    QDir().mkpath(folders_.temporaryFolder());
    const QString recording =
        folders_.temporaryFolder() + u"/velorin-5e2a4c0b-7b64-4e0c-9e31-0a6c0c3b7c11.wav"_s;
    const QString other = folders_.temporaryFolder() + u"/notes.txt"_s;
    const QString named = folders_.temporaryFolder() + u"/velorin-demonstration.wav"_s;
    for (const QString& path : {recording, other, named}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    folders_.removeLeftovers();
    EXPECT_FALSE(QFile::exists(recording));
    EXPECT_TRUE(QFile::exists(other));
    EXPECT_TRUE(QFile::exists(named));
}

TEST_F(XdgFoldersOfTheUser, AreClosedToOthersWhereTheyAreThere) {
    qputenv("XDG_CONFIG_HOME", home_.filePath(u"config"_s).toLocal8Bit());
    const QStringList open{folders_.dataFolder(), folders_.temporaryFolder()};
    for (const QString& path : open) {
        ASSERT_TRUE(QDir().mkpath(path));
        ASSERT_TRUE(QFile::setPermissions(path, QFile::Permissions(0x7755)));
    }
    folders_.close();
    for (const QString& path : open)
        EXPECT_EQ(QFile::permissions(path) & 0x0077, QFile::Permissions()) << qPrintable(path);
    EXPECT_FALSE(QFile::exists(XdgFolders::configurationFolder()));
    qunsetenv("XDG_CONFIG_HOME");
}

} // namespace
} // namespace velorin

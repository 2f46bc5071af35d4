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
    const QString recording = folders_.temporaryFolder() + u"/velorin-1234.wav"_s;
    const QString other = folders_.temporaryFolder() + u"/notes.txt"_s;
    for (const QString& path : {recording, other}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    folders_.removeLeftovers();
    EXPECT_FALSE(QFile::exists(recording));
    EXPECT_TRUE(QFile::exists(other));
}

} // namespace
} // namespace velorin

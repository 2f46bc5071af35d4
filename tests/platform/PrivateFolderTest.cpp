#include "platform/PrivateFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

struct PrivateFolderTest : testing::Test {
    static mode_t modeOf(const QString& path) {
        struct stat status {};
        return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 0777 : 0;
    }

    QTemporaryDir home;
    QString path = home.filePath(u"share/Velorin/models"_s);
};

TEST_F(PrivateFolderTest, IsForTheUserAloneWithAllThatIsMadeOnTheWay) {
    const mode_t before = umask(0);
    EXPECT_TRUE(makePrivateFolder(path));
    umask(before);
    for (const char* folder : {"share", "share/Velorin", "share/Velorin/models"})
        EXPECT_EQ(modeOf(home.filePath(QString::fromLatin1(folder))), 0700u) << folder;
}

TEST_F(PrivateFolderTest, WhatIsThereStaysAsItIsUntilItIsClosed) {
    ASSERT_TRUE(makePrivateFolder(path));
    ASSERT_EQ(chmod(QFile::encodeName(path).constData(), 0755), 0);
    EXPECT_TRUE(makePrivateFolder(path));
    EXPECT_EQ(modeOf(path), 0755u);
    EXPECT_TRUE(closeFolder(path));
    EXPECT_EQ(modeOf(path), 0700u);
}

TEST_F(PrivateFolderTest, CannotBeMadeWhereAFileIs) {
    QFile file(home.filePath(u"share"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_FALSE(makePrivateFolder(path));
    EXPECT_FALSE(makePrivateFolder(file.fileName()));
    EXPECT_FALSE(closeFolder(file.fileName()));
    EXPECT_FALSE(closeFolder(path));
}

} // namespace
} // namespace velorin

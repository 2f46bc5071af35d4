#include "platform/WholeFile.h"

#include "tests/support/SmallDisk.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

struct WholeFileTest : testing::Test {
    QTemporaryDir folder;
    QString path = folder.filePath(u"file"_s);
};

TEST_F(WholeFileTest, ReplacesWhatWasThere) {
    ASSERT_TRUE(replaceFile(path, "a long first content"));
    ASSERT_TRUE(replaceFile(path, "second"));
    EXPECT_EQ(contentOf(path), "second");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"file"_s});
}

TEST_F(WholeFileTest, GivesThePermissionsThatAreWanted) {
    ASSERT_TRUE(replaceFile(path, "x", QFile::ReadOwner | QFile::WriteOwner));
    EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
}

TEST_F(WholeFileTest, TellsThatAFolderIsMissing) {
    const auto written = replaceFile(folder.filePath(u"nowhere/file"_s), "x");
    ASSERT_FALSE(written);
    EXPECT_FALSE(written.error().isEmpty());
}

TEST_F(WholeFileTest, KeepsTheOldContentWhereTheDiskIsFull) {
    const SmallDisk disk(u"256k"_s);
    ASSERT_TRUE(disk.isThere());
    const QString onDisk = disk.path() + u"/file"_s;
    const QByteArray old(20'000, 'a');
    ASSERT_TRUE(replaceFile(onDisk, old));
    disk.fill();
    // Fits into a buffer, and not onto the disk.
    EXPECT_FALSE(replaceFile(onDisk, QByteArray(12'000, 'b')));
    EXPECT_EQ(contentOf(onDisk), old);
}

} // namespace
} // namespace velorin

#include "platform/WholeFile.h"

#include "tests/support/SmallDisk.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

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

TEST_F(WholeFileTest, IsForTheUserAloneWhateverTheMask) {
    const mode_t before = umask(0);
    EXPECT_TRUE(replaceFile(path, "x"));
    umask(before);
    EXPECT_EQ(QFile::permissions(path) & 0x0077, QFile::Permissions());
}

TEST_F(WholeFileTest, LeavesALinkAndReplacesWhatItLeadsTo) {
    const QString link = folder.filePath(u"link"_s);
    ASSERT_TRUE(QFile::link(path, link));
    ASSERT_TRUE(replaceFile(link, "by the link"));
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(contentOf(path), "by the link");
}

/// Names that a user may give to files of his own, beside one of ours called "file".
const QStringList usersNames{u"file.backup"_s,
                             u"file.aBcDeF"_s,
                             u"file.123456"_s,
                             u"file.old"_s,
                             u"file~"_s,
                             u".file.swp"_s,
                             u"#file#"_s,
                             u"file.bak"_s,
                             u"file.orig"_s,
                             u"file.unreadable.json"_s,
                             u"file (copy)"_s,
                             u"file.velorin"_s,
                             u"file.velorin-backup"_s,
                             u"file.velorin-unfinished"_s,
                             u"file.velorin-unfinished-"_s,
                             u"file.velorin-unfinished-letters"_s,
                             u"file.velorin-unfinished-0123456789abcdef.txt"_s,
                             u"file.velorin-unfinished-0123456789ABCDEF"_s,
                             u"my file.velorin-unfinished-0123456789abcdef"_s,
                             u"other.velorin-unfinished-0123456789abcdef"_s};

class LeftoversOfWriting : public WholeFileTest {
protected:
    void make(const QString& name, int secondsAgo = 600) const {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-secondsAgo),
                                     QFileDevice::FileModificationTime));
    }
    bool isThere(const QString& name) const { return QFile::exists(folder.filePath(name)); }
};

TEST_F(LeftoversOfWriting, GoWhenNobodyWritesToThemAnyMore) {
    make(u"file.velorin-unfinished-0123456789abcdef"_s);
    make(u"file.velorin-unfinished-fedcba9876543210"_s, 1);
    removeUnfinished(path);
    EXPECT_FALSE(isThere(u"file.velorin-unfinished-0123456789abcdef"_s));
    EXPECT_TRUE(isThere(u"file.velorin-unfinished-fedcba9876543210"_s)) << "somebody may be writing it";
}

TEST_F(LeftoversOfWriting, AreNeverTheFilesOfTheUser) {
    for (const QString& name : usersNames)
        make(name);
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"file.velorin-unfinished-aaaaaaaaaaaaaaaa"_s));
    ASSERT_TRUE(
        QFile::link(u"/etc/passwd"_s, folder.filePath(u"file.velorin-unfinished-bbbbbbbbbbbbbbbb"_s)));
    for (int start = 0; start < 10; ++start) {
        removeUnfinished(path);
        ASSERT_TRUE(replaceFile(path, "new"));
    }
    for (const QString& name : usersNames)
        EXPECT_TRUE(isThere(name)) << qPrintable(name);
    EXPECT_TRUE(isThere(u"file.velorin-unfinished-aaaaaaaaaaaaaaaa"_s));
    EXPECT_TRUE(isThere(u"file.velorin-unfinished-bbbbbbbbbbbbbbbb"_s));
}

TEST_F(LeftoversOfWriting, HaveTheNameThatIsLookedFor) {
    const int child = fork();
    if (child == 0) {
        // What is too large for the disk ends the process in the middle of its writing.
        signal(SIGXFSZ, SIG_DFL);
        const rlimit small{4096, 4096};
        const rlimit noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        setrlimit(RLIMIT_FSIZE, &small);
        (void)replaceFile(path, QByteArray(100'000, 'x'));
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
    removeUnfinished(path, std::chrono::seconds(0));
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(WholeFileTest, AnUnreadableFileTakesTheNextNumberThatIsFree) {
    path = folder.filePath(u"history.json"_s);
    for (const char* content : {"one", "two", "three"}) {
        ASSERT_TRUE(replaceFile(path, content));
        EXPECT_TRUE(setUnreadableAside(path));
        EXPECT_FALSE(QFile::exists(path));
    }
    EXPECT_EQ(contentOf(folder.filePath(u"history.unreadable.json"_s)), "one");
    EXPECT_EQ(contentOf(folder.filePath(u"history.unreadable.2.json"_s)), "two");
    EXPECT_EQ(contentOf(folder.filePath(u"history.unreadable.3.json"_s)), "three");
    EXPECT_TRUE(setUnreadableAside(path)) << "nothing is in its place";
}

TEST_F(WholeFileTest, AnUnreadableFileThatCannotBeRenamedStays) {
    EXPECT_FALSE(setUnreadableAside(u"/proc/self/status"_s));
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

#include "core/LineCounter.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

struct LineCounterTest : testing::Test {
    void append(const QByteArray& bytes) const {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(bytes);
    }
    qint64 lines() { return counter.count(path, false)->lines; }

    QTemporaryDir folder;
    QString path = folder.filePath(u"log"_s);
    LineCounter counter;
};

TEST_F(LineCounterTest, KnowsAFileThatIsNotThere) { EXPECT_FALSE(counter.count(path, false)); }

TEST_F(LineCounterTest, GoesOnWhereItStoppedWhereverThatWas) {
    append("one\n\ntwo\nthr");
    EXPECT_EQ(lines(), 3);
    append("ee\n");
    EXPECT_EQ(lines(), 3);
    append("\n\xc3");
    EXPECT_EQ(lines(), 0) << "half a character";
    append("\xa9\n");
    EXPECT_EQ(lines(), 4);
    EXPECT_EQ(counter.count(path, false)->bytes, 19);
}

TEST_F(LineCounterTest, ReadsWhatWasCountedNoMore) {
    append("one\ntwo\n");
    EXPECT_EQ(lines(), 2);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write("\n\n\n");
    file.close();
    EXPECT_EQ(lines(), 2);
    counter.startAnew();
    EXPECT_EQ(lines(), 1);
}

TEST_F(LineCounterTest, StartsAnewWithAnotherOrAShorterFile) {
    append("one\ntwo\n");
    EXPECT_EQ(lines(), 2);
    QFile file(path);
    ASSERT_TRUE(file.resize(4));
    EXPECT_EQ(lines(), 1);
    append("two\nthree\n");
    const QString moved = folder.filePath(u"moved"_s);
    ASSERT_TRUE(QFile::rename(path, moved));
    append("another\nlonger than the first\nfor sure\nit is\n");
    EXPECT_EQ(lines(), 4);
}

TEST_F(LineCounterTest, CountsAcrossThePiecesThatItReads) {
    // Lines of three bytes and characters of two: every place of both falls onto an edge.
    append(QByteArray("\xc3\xa9\n").repeated(1'000'000));
    EXPECT_EQ(lines(), 1'000'000);
    append(QByteArray("\xc3\xa9").repeated(1'000'000));
    EXPECT_EQ(lines(), 1'000'001);
}

TEST_F(LineCounterTest, StopsWhenItIsTold) {
    append("one\n");
    EXPECT_EQ(counter.count(path, true)->lines, 0);
}

} // namespace
} // namespace velorin

#include "platform/linux/sound/SndfileWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <cstdlib>

#include <sndfile.h>

namespace velorin {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr AudioFormat recording{16000, 1, AudioFormat::Samples::int16};
constexpr auto onlyTheUser = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

} // namespace

TEST(SndfileWriter, WritesAWavFileThatNobodyElseCanRead) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"deep/down/recording.wav"_s);
    auto writer = SndfileFactory().create(path, recording);
    ASSERT_TRUE(writer);
    EXPECT_EQ(writer->processingFormat(), recording);
    EXPECT_TRUE(writer->write({recording, std::vector<qint16>{1, -2, 32767, -32768}, 0}));
    writer.reset();
    EXPECT_EQ(QFile::permissions(path), onlyTheUser);
    EXPECT_EQ(QFile::permissions(folder.filePath(u"deep"_s)), onlyTheUser | QFile::ExeOwner | QFile::ExeUser);

    SF_INFO info{};
    SNDFILE* const file = sf_open(QFile::encodeName(path).constData(), SFM_READ, &info);
    ASSERT_TRUE(file);
    EXPECT_EQ(info.samplerate, 16000);
    EXPECT_EQ(info.channels, 1);
    EXPECT_EQ(info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    std::vector<qint16> samples(4);
    EXPECT_EQ(sf_readf_short(file, samples.data(), 4), 4);
    EXPECT_EQ(samples, (std::vector<qint16>{1, -2, 32767, -32768}));
    sf_close(file);
}

TEST(SndfileWriter, MakesTheFolderPrivateAndTakesNobodyElses) {
    const QTemporaryDir folder;
    const auto onlyTheUsers = onlyTheUser | QFile::ExeOwner | QFile::ExeUser;
    ASSERT_TRUE(QDir(folder.path()).mkdir(u"open"_s));
    const QString open = folder.filePath(u"open"_s);
    ASSERT_TRUE(QFile::setPermissions(open, onlyTheUsers | QFile::ReadOther | QFile::ExeOther));
    EXPECT_TRUE(SndfileFactory().create(open + u"/a.wav"_s, recording));
    EXPECT_EQ(QFile::permissions(open), onlyTheUsers);
    ASSERT_TRUE(QFile::link(open, folder.filePath(u"link"_s)));
    EXPECT_FALSE(SndfileFactory().create(folder.filePath(u"link/b.wav"_s), recording));
    EXPECT_FALSE(SndfileFactory().create(u"/proc/1/b.wav"_s, recording));
}

TEST(SndfileWriter, LeavesNoFileWhenTheProcessEnds) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"recording.wav"_s);
    const auto recordAndEnd = [&path] {
        const auto writer = SndfileFactory().create(path, recording);
        std::exit(writer && QFile::exists(path) ? 0 : 1);
    };
    EXPECT_EXIT(recordAndEnd(), testing::ExitedWithCode(0), "");
    EXPECT_FALSE(QFile::exists(path));
}

TEST(SndfileWriter, HasAHeaderOf44Bytes) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"empty.wav"_s);
    SndfileFactory().create(path, recording).reset();
    EXPECT_EQ(QFileInfo(path).size(), 44);
}

TEST(SndfileWriter, OverwritesNothing) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.wav"_s);
    EXPECT_TRUE(SndfileFactory().create(path, recording));
    EXPECT_FALSE(SndfileFactory().create(path, recording));
    EXPECT_FALSE(SndfileFactory().create(u"/proc/nowhere/a.wav"_s, recording));
}

TEST(SndfileWriter, RefusesAnotherFormat) {
    const QTemporaryDir folder;
    const auto writer = SndfileFactory().create(folder.filePath(u"a.wav"_s), recording);
    EXPECT_FALSE(writer->write({{48000, 1, AudioFormat::Samples::int16}, std::vector<qint16>{1}, 0}));
}

} // namespace velorin

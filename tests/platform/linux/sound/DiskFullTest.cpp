#include "platform/linux/sound/SndfileWriter.h"
#include "platform/linux/sound/SoxrConverter.h"
#include "speech/RecordingWriter.h"
#include "tests/support/FakeApplicationFolders.h"
#include "tests/support/SmallDisk.h"

#include <QDir>
#include <QFileInfo>

#include <gmock/gmock.h>

#include <sndfile.h>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr AudioFormat microphone{48000, 1, AudioFormat::Samples::float32};

AudioBuffer second() { return {microphone, std::vector<float>(48000, 0.25F), 0}; }

sf_count_t framesOf(const QString& path) {
    SF_INFO info{};
    SNDFILE* const file = sf_open(QFile::encodeName(path).constData(), SFM_READ, &info);
    EXPECT_TRUE(file) << sf_strerror(nullptr);
    sf_close(file);
    return info.frames;
}

} // namespace

struct RecordingOnAFullDisk : testing::Test {
    SmallDisk disk{u"128k"_s};
    FakeApplicationFolders folders;
    SndfileFactory files;
    SoxrConverterFactory converters;

    RecordingOnAFullDisk() { folders.temporary = disk.path() + u"/velorin"_s; }

    std::shared_ptr<RecordingWriter> record() {
        return RecordingWriter::make(folders, files, converters, microphone);
    }
};

TEST_F(RecordingOnAFullDisk, KeepsWhatFitsAndGoesOnWhenThereIsRoomAgain) {
    ASSERT_TRUE(disk.isThere());
    const auto writer = record();
    ASSERT_TRUE(writer);
    writer->write(second());
    disk.fill();
    for (int i = 0; i < 5; ++i)
        writer->write(second());
    disk.makeRoom();
    writer->write(second());
    const auto path = writer->finish();
    ASSERT_TRUE(path);
    // The first and the last second, and what the rest of a page took between them.
    EXPECT_NEAR(static_cast<double>(framesOf(*path)), 32000, 4000);
}

TEST_F(RecordingOnAFullDisk, LeavesNothingWhereNotEvenTheBeginningFits) {
    ASSERT_TRUE(disk.isThere());
    ASSERT_TRUE(QDir().mkpath(folders.temporary));
    disk.fill();
    const auto writer = record();
    // The header may be refused at once or at the first sound.
    if (writer) {
        writer->write(second());
        EXPECT_EQ(writer->finish(), std::nullopt);
    }
    EXPECT_TRUE(QDir(folders.temporary).isEmpty());
}

} // namespace velorin

#include "tests/speech/EngineFixture.h"

#include <QDir>

namespace velorin {

using namespace Qt::Literals::StringLiterals;
using testing::IsEmpty;
using testing::SizeIs;

struct SpeechEngineRecording : EngineFixture {
    SpeechEngineRecording() { engine->recordsAudio = true; }

    QStringList filesLeft() const { return QDir(folder.path()).entryList(QDir::Files); }
};

TEST_F(SpeechEngineRecording, IsKeptInTheFormatThatProvidersTake) {
    ASSERT_TRUE(start());
    input.block(buffer());
    const auto recording = stop();
    ASSERT_TRUE(recording);
    EXPECT_EQ(*recording, files.paths.at(0));
    EXPECT_EQ(files.formats.at(0), (AudioFormat{16000, 1, AudioFormat::Samples::int16}));
    EXPECT_TRUE(recording->startsWith(folder.path() + u"/velorin-"_s));
    EXPECT_TRUE(recording->endsWith(u".wav"_s));
    EXPECT_EQ(files.open, 0);
    EXPECT_TRUE(QFile::exists(*recording));
}

TEST_F(SpeechEngineRecording, LeavesNoFileWithoutSound) {
    ASSERT_TRUE(start());
    EXPECT_EQ(stop(), std::nullopt);
    EXPECT_THAT(filesLeft(), IsEmpty());
}

TEST_F(SpeechEngineRecording, KeepsAFileOf45BytesAndNoneOf44) {
    files.bytesAtFirst = 45;
    ASSERT_TRUE(start());
    EXPECT_TRUE(stop());
    files.bytesAtFirst = 44;
    ASSERT_TRUE(start());
    EXPECT_FALSE(stop());
    EXPECT_THAT(filesLeft(), SizeIs(1));
}

TEST_F(SpeechEngineRecording, HasANewNameEachTime) {
    for (int dictation = 0; dictation < 2; ++dictation) {
        ASSERT_TRUE(start());
        input.block(buffer());
        ASSERT_TRUE(stop());
    }
    EXPECT_NE(files.paths.at(0), files.paths.at(1));
}

TEST_F(SpeechEngineRecording, TellsThatItIsNotWhole) {
    std::vector<RecordingWriter::Loss> losses;
    engine->onRecordingCut = [&losses](RecordingWriter::Loss loss) { losses.push_back(loss); };
    ASSERT_TRUE(start());
    input.block(buffer());
    files.writeSucceeds = false;
    input.block(buffer());
    files.writeSucceeds = true;
    input.block(buffer());
    EXPECT_TRUE(stop());
    EXPECT_EQ(losses, std::vector{RecordingWriter::Loss::samples});
    ASSERT_TRUE(start());
    input.block(buffer());
    EXPECT_TRUE(stop());
    EXPECT_THAT(losses, SizeIs(1)) << "each has its own";
}

TEST_F(SpeechEngineRecording, GrowsNoLongerThanItMay) {
    std::vector<RecordingWriter::Loss> losses;
    engine->onRecordingCut = [&losses](RecordingWriter::Loss loss) { losses.push_back(loss); };
    engine->mostRecordedBytes = 1000;
    ASSERT_TRUE(start());
    for (int i = 0; i < 20; ++i)
        input.block(buffer());
    EXPECT_TRUE(stop());
    EXPECT_EQ(losses, std::vector{RecordingWriter::Loss::tooLong});
    EXPECT_LT(files.writes, 20);
}

TEST_F(SpeechEngineRecording, IsNotMadeUnlessAskedFor) {
    engine->recordsAudio = false;
    ASSERT_TRUE(start());
    engine->recordsAudio = true;
    input.block(buffer());
    EXPECT_EQ(stop(), std::nullopt);
    EXPECT_THAT(files.paths, IsEmpty());
}

TEST_F(SpeechEngineRecording, IsMadeThoughNothingCanBeRecognised) {
    converters.refused = recognition.bestFormat;
    ASSERT_TRUE(start());
    input.block(buffer());
    EXPECT_TRUE(stop());
}

TEST_F(SpeechEngineRecording, CanFailWithoutDisturbingTheDictation) {
    files.refuses = true;
    ASSERT_TRUE(start());
    input.block(buffer());
    EXPECT_EQ(stop(), std::nullopt);
    EXPECT_THAT(filesLeft(), IsEmpty());

    files.refuses = false;
    converters.refused = RecordingWriter::fileFormat;
    ASSERT_TRUE(start());
    input.block(buffer());
    EXPECT_THAT(recognition.inputs.back()->buffers, SizeIs(1));
    EXPECT_EQ(stop(), std::nullopt);
    EXPECT_THAT(filesLeft(), IsEmpty());
}

TEST_F(SpeechEngineRecording, TriesEveryBufferThoughWritesFail) {
    ASSERT_TRUE(start());
    files.writeSucceeds = false;
    input.block(buffer());
    input.block(buffer());
    EXPECT_EQ(files.writes, 2);
    EXPECT_THAT(recognition.inputs.back()->buffers, SizeIs(2));
    EXPECT_EQ(stop(), std::nullopt);
}

TEST_F(SpeechEngineRecording, IsClosedBeforeTheRecogniserEnds) {
    ASSERT_TRUE(start());
    input.block(buffer());
    recognition.finalizationGate.close();
    auto stopping = engine->stop();
    EXPECT_EQ(files.open, 0);
    recognition.finalizationGate.open();
    EXPECT_TRUE(QCoro::waitFor(stopping));
}

TEST_F(SpeechEngineRecording, IsSkippedByABufferThatComesAfterItsEnd) {
    ASSERT_TRUE(start());
    stop();
    input.block(buffer());
    EXPECT_EQ(files.writes, 0);
}

TEST_F(SpeechEngineRecording, GoesWithTheEngine) {
    ASSERT_TRUE(start());
    engine.reset();
    EXPECT_THAT(filesLeft(), IsEmpty());
    recognition.transcribers.back()->ended = true;
    recognition.transcribers.back()->hasNews.open();
}

} // namespace velorin

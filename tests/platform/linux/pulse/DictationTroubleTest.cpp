// A whole dictation, from a real sound server through the real recogniser, in which the sound goes wrong.
#include "platform/linux/pulse/PulseAudioInput.h"
#include "platform/linux/recognition/SherpaRecognition.h"
#include "platform/linux/sound/SndfileWriter.h"
#include "platform/linux/sound/SoxrConverter.h"
#include "speech/SpeechEngine.h"
#include "tests/support/FakeApplicationFolders.h"
#include "tests/support/FakeClock.h"
#include "tests/support/SoundServer.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <gmock/gmock.h>

namespace velorin {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using Steady = std::chrono::steady_clock;

namespace {

/// "Go forward ten meters", by a person: raw 16-bit samples at 16 kHz, from Debian.
std::vector<float> goForward() {
    QFile file(u"/usr/share/pocketsphinx/test/data/goforward.raw"_s);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    std::vector<float> samples(static_cast<std::size_t>(bytes.size()) / 2);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(reinterpret_cast<const qint16*>(bytes.constData())[i]) / 32768;
    return samples;
}

} // namespace

struct DictationTrouble : testing::TestWithParam<SoundServer::Kind> {
    QTemporaryDir folder;
    SoundServer server{"", GetParam()};
    PulseAudioInput input;
    FakeClock clock;
    SherpaRecognition recognition{clock, ModelStore::programFolders(), folder.path()};
    SoxrConverterFactory converters;
    SndfileFactory files;
    FakeApplicationFolders folders;
    LatencyMarks marks;
    SpeechEngine engine{input, recognition, converters, files, folders, marks};
    QString text;
    int results = 0;
    QStringList errors;

    DictationTrouble() {
        engine.onResult = [this](const QString& result, bool isFinal) {
            ++results;
            if (isFinal)
                text += result;
        };
        engine.onError = [this](const SpeechEngineError& error) { errors.append(error.description()); };
    }

    bool start() {
        text.clear();
        results = 0;
        errors.clear();
        return QCoro::waitFor(engine.start(u"en-US"_s)).has_value();
    }

    /// Until a part of it has been understood.
    void speakFor(int previews = 1) {
        server.play(goForward());
        ASSERT_TRUE(waitUntil([&] { return results >= previews; }, 60s));
    }

    void stop() { QCoro::waitFor(engine.stop()); }

    void dictatesTheWhole() {
        // The preview of the pause after it.
        QString shown;
        engine.onResult = [this, &shown](const QString& result, bool isFinal) {
            shown = result;
            if (isFinal)
                text += result;
        };
        ASSERT_TRUE(start());
        server.play(goForward());
        EXPECT_TRUE(waitUntil([&] { return shown.contains(u"meters"_s); }, 60s)) << shown.toStdString();
        stop();
        EXPECT_TRUE(text.toLower().startsWith(u"go forward ten meters"_s)) << text.toStdString();
        EXPECT_TRUE(errors.isEmpty());
    }
};

INSTANTIATE_TEST_SUITE_P(Of, DictationTrouble,
                         testing::Values(SoundServer::Kind::pulseAudio, SoundServer::Kind::pipeWire),
                         [](const auto& kind) {
                             return kind.param == SoundServer::Kind::pulseAudio ? "PulseAudio" : "PipeWire";
                         });

TEST_P(DictationTrouble, DeliversWhatWasHeardBeforeTheMicrophoneWasUnplugged) {
    ASSERT_TRUE(start());
    speakFor();
    ASSERT_TRUE(server.control("unload-module module-remap-source"));
    ASSERT_TRUE(waitUntil([&] { return !errors.isEmpty(); }));
    EXPECT_EQ(errors, QStringList{u"Audio engine failed: The microphone was unplugged."_s});
    EXPECT_TRUE(engine.isRunning());
    stop();
    EXPECT_FALSE(text.isEmpty());
}

TEST_P(DictationTrouble, DeliversWhatWasHeardBeforeTheServerDiedAndGoesOnWithTheNext) {
    ASSERT_TRUE(start());
    speakFor();
    server.kill();
    ASSERT_TRUE(waitUntil([&] { return !errors.isEmpty(); }));
    EXPECT_EQ(errors, QStringList{u"Audio engine failed: The sound server went away."_s});
    server.start();
    stop();
    EXPECT_FALSE(text.isEmpty());
    dictatesTheWhole();
}

TEST_P(DictationTrouble, NeverStopsTheMainThreadForASilentServer) {
    ASSERT_TRUE(start());
    speakFor();
    auto last = Steady::now();
    Steady::duration longest{0};
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout, &ticks, [&] {
        longest = std::max(longest, Steady::now() - last);
        last = Steady::now();
    });
    ticks.start(10ms);
    server.freeze();
    stop();
    EXPECT_FALSE(text.isEmpty());
    const auto started = QCoro::waitFor(engine.start(u"en-US"_s));
    ASSERT_FALSE(started);
    EXPECT_EQ(started.error().kind, SpeechEngineError::Kind::noInputDevice);
    // A second and a half is what the server was waited for; the rest is a busy machine's.
    EXPECT_LT(longest, 750ms);
    server.thaw();
    ticks.stop();
}

} // namespace velorin

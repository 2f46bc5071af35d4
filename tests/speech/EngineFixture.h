/// An engine among fakes, with all that it reported written down.
#pragma once

#include "speech/SpeechEngine.h"
#include "tests/support/FakeApplicationFolders.h"
#include "tests/support/FakeAudioConverter.h"
#include "tests/support/FakeAudioFiles.h"
#include "tests/support/FakeAudioInput.h"
#include "tests/support/FakeSpeechRecognition.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace velorin {

inline void PrintTo(const QString& text, std::ostream* stream) {
    *stream << '"' << text.toStdString() << '"';
}

struct EngineFixture : testing::Test {
    using Outcome = tl::expected<void, SpeechEngineError>;
    using Kind = SpeechEngineError::Kind;

    QTemporaryDir folder;
    FakeApplicationFolders folders;
    FakeSpeechRecognition recognition;
    FakeAudioConverters converters;
    FakeAudioFiles files;
    FakeAudioInput input; ///< Holds on to the last block, and that to a file.
    LatencyMarks marks;
    std::optional<SpeechEngine> engine;

    std::vector<TranscriptionResult> results;
    std::vector<SpeechEngineError> errors;
    std::vector<QString> statuses;
    std::vector<float> levels;

    EngineFixture() {
        folders.temporary = folder.path();
        marks.begin();
        engine.emplace(input, recognition, converters, files, folders, marks);
        engine->onResult = [this](const QString& text, bool isFinal) { results.push_back({text, isFinal}); };
        engine->onError = [this](const SpeechEngineError& error) { errors.push_back(error); };
        engine->onStatus = [this](const QString& status) { statuses.push_back(status); };
        engine->onAudioLevel = [this](float level) { levels.push_back(level); };
    }

    Outcome start() { return QCoro::waitFor(engine->start(QStringLiteral("en-US"))); }
    std::optional<QString> stop() { return QCoro::waitFor(engine->stop()); }

    static AudioBuffer buffer(std::size_t frames = 1024, float value = 1) {
        return {{48000, 2, AudioFormat::Samples::float32}, std::vector<float>(frames * 2, value), 0};
    }

    /// How often the recogniser was asked this.
    long asked(const QString& question) const {
        return std::count(recognition.asked.begin(), recognition.asked.end(), question);
    }
};

} // namespace velorin

/// The temporary copy of what the microphone hears during one dictation: 16 kHz, mono, 16-bit WAV, for a
/// provider that transcribes sound itself. It owns the file and the format; nothing that fails here ever
/// disturbs a dictation.
#pragma once

#include "platform/ApplicationFolders.h"
#include "platform/AudioConverter.h"
#include "platform/AudioFileWriter.h"

#include <memory>
#include <optional>

namespace velorin {

class RecordingWriter final {
public:
    static constexpr AudioFormat fileFormat{16000.0, 1, AudioFormat::Samples::int16};

    /// Opens a new file in the temporary folder for sound of `inputFormat`, which holds so many bytes of it
    /// at most. Null when the file or its converter cannot be had; nothing is left behind then.
    [[nodiscard]] static std::shared_ptr<RecordingWriter>
    make(const ApplicationFolders& folders, AudioFileFactory& files, AudioConverterFactory& converters,
         const AudioFormat& inputFormat, std::optional<qint64> mostBytes = {});

    [[nodiscard]] const QString& path() const { return path_; }

    /// Converts and appends the buffer while the file is open and not full; a buffer that fails is left out.
    /// Audio thread.
    void write(const AudioBuffer& buffer);

    /// Why not all of the sound is in the file; nothing while it is whole. Main thread, once the audio thread
    /// has stopped writing.
    enum class Loss { samples, tooLong };
    [[nodiscard]] std::optional<Loss> loss() const { return loss_; }

    /// Closes the file. Main thread, once the audio thread has stopped writing.
    void close() { file_.reset(); }

    /// Closes the file and gives its path, which the caller then owns; nothing, and no file, when it holds
    /// no sound.
    [[nodiscard]] std::optional<QString> finish();

    /// Closes and removes the file.
    void discard();

private:
    QString path_;
    std::unique_ptr<AudioFileWriter> file_;
    std::unique_ptr<AudioConverter> converter_;
    AudioFormat format_;
    std::optional<qint64> mostBytes_;
    qint64 bytes_ = 0;
    std::optional<Loss> loss_;
};

} // namespace velorin

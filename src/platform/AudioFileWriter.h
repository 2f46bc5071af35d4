/// A sound file that is being written; destroying it closes the file. Used by one thread at a time.
#pragma once

#include "platform/AudioBuffer.h"

#include <QString>

#include <memory>

namespace velorin {

class AudioFileWriter {
public:
    virtual ~AudioFileWriter() = default;

    /// What `write` takes.
    [[nodiscard]] virtual AudioFormat processingFormat() const = 0;

    /// Appends the buffer. False when it could not be written whole.
    virtual bool write(const AudioBuffer& buffer) = 0;
};

class AudioFileFactory {
public:
    virtual ~AudioFileFactory() = default;

    /// Makes a new WAV file of linear PCM, readable by nobody but the user; nothing when that fails, also
    /// when a file of that name exists. Missing folders are made, private to the user.
    [[nodiscard]] virtual std::unique_ptr<AudioFileWriter> create(const QString& path,
                                                                  AudioFormat format) = 0;
};

} // namespace velorin

/// Turns a stream of sound of one format into another: sample rate, channels, kind of samples.
///
/// A converter belongs to one stream: it keeps what it needs of one buffer for the next, so that no edge is
/// heard between them. Used by one thread at a time.
#pragma once

#include "platform/AudioBuffer.h"

#include <QString>

#include <memory>
#include <tl/expected.hpp>

namespace velorin {

class AudioConverter {
public:
    virtual ~AudioConverter() = default;

    /// Takes the whole of `source` and gives what is ready, at most `capacity` frames: often fewer frames
    /// than the ratio tells, at times none. Fails with the reason in words.
    [[nodiscard]] virtual tl::expected<AudioBuffer, QString> convert(const AudioBuffer& source,
                                                                     quint32 capacity) = 0;
};

class AudioConverterFactory {
public:
    virtual ~AudioConverterFactory() = default;

    /// Nothing when sound cannot be converted between the two.
    [[nodiscard]] virtual std::unique_ptr<AudioConverter> make(AudioFormat from, AudioFormat to) = 0;
};

} // namespace velorin

/// WAV files by libsndfile. They pass: what nobody has removed goes when the process ends, by whichever way it
/// can still do something.
#pragma once

#include "platform/AudioFileWriter.h"

namespace velorin {

class SndfileFactory final : public AudioFileFactory {
public:
    [[nodiscard]] std::unique_ptr<AudioFileWriter> create(const QString& path, AudioFormat format) override;
};

} // namespace velorin

/// WAV files by libsndfile.
#pragma once

#include "platform/AudioFileWriter.h"

namespace velorin {

class SndfileFactory final : public AudioFileFactory {
public:
    [[nodiscard]] std::unique_ptr<AudioFileWriter> create(const QString& path, AudioFormat format) override;
};

} // namespace velorin

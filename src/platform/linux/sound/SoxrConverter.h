/// Conversion of rate, channels and kind of samples; the rate by libsoxr.
///
/// Several channels become one as their mean, one becomes several as copies. Keeps back less than 10 ms of
/// sound between buffers.
#pragma once

#include "platform/AudioConverter.h"

namespace velorin {

class SoxrConverterFactory final : public AudioConverterFactory {
public:
    [[nodiscard]] std::unique_ptr<AudioConverter> make(AudioFormat from, AudioFormat to) override;
};

} // namespace velorin

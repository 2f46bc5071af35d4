/// Converting one buffer of a stream, for the recogniser and for the recording alike.
#pragma once

#include "platform/AudioConverter.h"

#include <optional>

namespace velorin {

/// Room for what `frames` frames at `fromRate` become at `toRate`, and some more for what the converter kept
/// back before. A ratio that no pair of real formats has ends the program.
[[nodiscard]] quint32 conversionCapacity(double fromRate, double toRate, quint32 frames);

/// Nothing when the conversion fails or gives no frame yet.
[[nodiscard]] std::optional<AudioBuffer> convert(const AudioBuffer& buffer, AudioConverter& converter,
                                                 const AudioFormat& format);

} // namespace velorin

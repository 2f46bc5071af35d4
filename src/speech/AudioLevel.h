/// The loudness of a buffer on a scale from 0 (−60 dB and below) to 1 (full scale), by the first channel.
#pragma once

#include "platform/AudioBuffer.h"

namespace velorin {

/// 0 for an empty buffer and for samples that cannot be read. Any thread; allocates nothing.
[[nodiscard]] float audioLevel(const AudioBuffer& buffer);

} // namespace velorin

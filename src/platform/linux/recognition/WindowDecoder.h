/// Writes down what is said in one piece of sound. Two threads may use one at once.
#pragma once

#include <span>
#include <string>

namespace velorin {

class WindowDecoder {
public:
    virtual ~WindowDecoder() = default;

    /// 16 kHz, mono, from −1 to 1. Gives UTF-8 without white space at its ends; empty when nothing was
    /// understood.
    [[nodiscard]] virtual std::string decode(std::span<const float> samples) = 0;
};

} // namespace velorin

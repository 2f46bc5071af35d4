/// The language model of the machine itself.
#pragma once

namespace velorin {

class LanguageModel {
public:
    enum class Availability { available, deviceNotEligible, notEnabled, modelNotReady, unknown };

    virtual ~LanguageModel() = default;

    [[nodiscard]] virtual Availability availability() const = 0;
    [[nodiscard]] bool isAvailable() const { return availability() == Availability::available; }
};

} // namespace velorin

/// There is no language model of the machine itself on Linux yet.
#pragma once

#include "platform/LanguageModel.h"

namespace velorin {

class NoLanguageModel final : public LanguageModel {
public:
    [[nodiscard]] Availability availability() const override { return Availability::deviceNotEligible; }
};

} // namespace velorin

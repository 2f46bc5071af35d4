/// There is no language model of the machine itself on Linux yet.
#pragma once

#include "platform/LanguageModel.h"

namespace velorin {

class NoLanguageModel final : public LanguageModel {
public:
    [[nodiscard]] Availability availability() const override { return Availability::deviceNotEligible; }
    QCoro::Task<tl::expected<QString, LanguageModelFailure>> respond(LanguageModelRequest) override {
        co_return tl::unexpected(LanguageModelFailure{QStringLiteral("no model"), false});
    }
};

} // namespace velorin

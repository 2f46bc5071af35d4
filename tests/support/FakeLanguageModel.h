/// The machine's own model, as available and as talkative as a test says.
#pragma once

#include "platform/LanguageModel.h"

#include <vector>

namespace velorin {

class FakeLanguageModel final : public LanguageModel {
public:
    Availability state = Availability::deviceNotEligible;
    tl::expected<QString, LanguageModelFailure> answer;
    std::vector<LanguageModelRequest> requests;

    [[nodiscard]] Availability availability() const override { return state; }
    QCoro::Task<tl::expected<QString, LanguageModelFailure>> respond(LanguageModelRequest request) override {
        requests.push_back(std::move(request));
        co_return std::as_const(answer);
    }
};

} // namespace velorin

/// The language model of the machine itself.
#pragma once

#include <QCoro/QCoroTask>
#include <QString>

#include <tl/expected.hpp>

namespace velorin {

struct LanguageModelRequest {
    QString instructions;
    QString prompt;
    double temperature = 0;
    int maximumResponseTokens = 0;
};

struct LanguageModelFailure {
    QString description;
    bool isCancellation = false;
};

class LanguageModel {
public:
    enum class Availability { available, deviceNotEligible, notEnabled, modelNotReady, unknown };

    virtual ~LanguageModel() = default;

    [[nodiscard]] virtual Availability availability() const = 0;
    [[nodiscard]] bool isAvailable() const { return availability() == Availability::available; }

    /// Each request is one of its own: nothing is kept for the next. Main thread; the wait resumes there.
    virtual QCoro::Task<tl::expected<QString, LanguageModelFailure>>
    respond(LanguageModelRequest request) = 0;
};

} // namespace velorin

/// What can go wrong with a call to a provider, in words for the user.
#pragma once

#include "platform/HttpSession.h"

#include <QString>

#include <tl/expected.hpp>

#include <variant>

namespace velorin {

struct ServiceError {
    enum class Kind {
        http, ///< `status`, and in `text` what the server said.
        appleIntelligenceUnavailable,
        appleIntelligence,
        notConfigured,
        invalidEndpoint,
        emptyResponse,
        malformedResponse,
        audioUnavailable,
    };

    Kind kind = Kind::malformedResponse;
    int status = 0;
    QString text;

    bool operator==(const ServiceError&) const = default;

    /// A full sentence.
    [[nodiscard]] QString description() const;
};

/// The machine's own model was told to stop.
struct RequestCancelled {
    bool operator==(const RequestCancelled&) const = default;
};

/// A failure of ours, of the connection, or a cancellation.
using AIFailure = std::variant<ServiceError, HttpFailure, RequestCancelled>;

[[nodiscard]] QString description(const AIFailure& failure);

using AIResult = tl::expected<QString, AIFailure>;

[[nodiscard]] inline tl::unexpected<AIFailure> failed(ServiceError::Kind kind) {
    return tl::unexpected<AIFailure>(ServiceError{kind, 0, {}});
}

} // namespace velorin

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
        notEncrypted, ///< A key would have gone where others can read it.
    };

    Kind kind = Kind::malformedResponse;
    int status = 0;
    QString text;
    qsizetype length = 0; ///< Of all that the server said, in UTF-16 units; `text` is what is fit for people.

    bool operator==(const ServiceError& other) const {
        return kind == other.kind && status == other.status && text == other.text;
    }

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

/// What the log may know of it: kind, status, how much was said. Never what: a server may repeat what it was
/// asked, the key included.
[[nodiscard]] QString outline(const AIFailure& failure);

using AIResult = tl::expected<QString, AIFailure>;

[[nodiscard]] inline tl::unexpected<AIFailure> failed(ServiceError::Kind kind) {
    return tl::unexpected<AIFailure>(ServiceError{.kind = kind, .text = {}});
}

} // namespace velorin

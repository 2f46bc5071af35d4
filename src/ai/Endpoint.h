/// What can be told of a provider's address from its text alone, and the addresses that are made of it.
#pragma once

#include <QString>

#include <optional>

namespace velorin::Endpoint {

/// Whether the endpoint's host is this machine or one of the local network's ".local" names. Port, path
/// and surrounding white space do not matter; a text without a host is not local.
[[nodiscard]] bool isLocal(QStringView endpoint);

/// Whether nothing that goes to this host leaves the machine. A ".local" name may be any machine's.
[[nodiscard]] bool isThisMachine(QStringView host);

/// Where chat requests and recordings go. A bare host gains "/v1" and the path, an endpoint with a path of
/// its own the path alone. Nothing when the text is no address with a host; otherwise the user's own text,
/// completed.
///
///     chatUrl(u"http://localhost:11434")          // "http://localhost:11434/v1/chat/completions"
///     chatUrl(u"https://ai.example.org/v1/")      // "https://ai.example.org/v1/chat/completions"
[[nodiscard]] std::optional<QString> chatUrl(QStringView endpoint);
[[nodiscard]] std::optional<QString> transcriptionUrl(QStringView endpoint);

} // namespace velorin::Endpoint

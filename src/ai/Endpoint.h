/// What can be told of a provider's address from its text alone.
#pragma once

#include <QStringView>

namespace velorin::Endpoint {

/// Whether the endpoint's host is this machine or one of the local network's ".local" names. Port, path
/// and surrounding white space do not matter; a text without a host is not local.
[[nodiscard]] bool isLocal(QStringView endpoint);

} // namespace velorin::Endpoint

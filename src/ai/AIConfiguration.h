/// What a call to a provider needs to know, made afresh for each action. The one place in memory where a key
/// stands; nobody keeps it.
#pragma once

#include "ai/AIProvider.h"

namespace velorin {

struct AIConfiguration {
    AIProvider provider = AIProvider::apple;
    QString endpoint; ///< As the user wrote it, trimmed; empty for the machine's own model.
    QString model;
    QString apiKey; ///< May be empty.

    bool operator==(const AIConfiguration&) const = default;
};

} // namespace velorin

/// Texts that are hard on patterns, and on whoever goes over the whole text for each word of it.
#pragma once

#include <QString>

#include <vector>

namespace velorin::agreement {

struct HostileText {
    QString name;
    QString text;
};

/// Of about this many UTF-16 units each.
[[nodiscard]] std::vector<HostileText> hostileTexts(qsizetype size);

} // namespace velorin::agreement

/// Equality of two JSON values as the cases mean it: strings by their code points, objects key by key,
/// numbers by their exact value unless a tolerance is given.
#pragma once

#include <QJsonValue>
#include <QString>

#include <optional>

namespace velorin::vectors {

/// A number is close enough if it satisfies either bound.
struct Tolerance {
    double relative = 0;
    double absolute = 0;
};

[[nodiscard]] bool areEqual(const QJsonValue& expected, const QJsonValue& got, Tolerance tolerance = {});

/// The value as one line of ASCII, so that a combining mark or an odd space can be told apart.
[[nodiscard]] QByteArray printable(const QJsonValue& value);

} // namespace velorin::vectors

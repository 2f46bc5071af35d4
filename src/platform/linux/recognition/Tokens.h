/// The tokens file that the run time wants, made from the model's own binary form.
///
/// The binary is a run of tokens, each its length (one byte below 128, otherwise that byte minus 128 plus 128
/// times the next) and its bytes. The text has a row a token: base64, a space, its number.
#pragma once

#include <QByteArray>

#include <optional>

namespace velorin {

/// Nothing when the binary ends in the middle of a token.
[[nodiscard]] std::optional<QByteArray> tokensFromBinary(const QByteArray& binary);

} // namespace velorin

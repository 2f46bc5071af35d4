/// What a server or a model answered, read without trust: JSON strictly, text freed of its wrappings.
///
/// Pure, any thread; in the size of a text linear.
#pragma once

#include "ai/ServiceError.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace velorin::Replies {

/// The trimmed text of the first choice. Nothing when it is blank, or when any part of the reply that we
/// read is missing or of another type, in other choices as well.
[[nodiscard]] std::optional<QString> chat(const QByteArray& body);

/// `malformedResponse` without a text, `emptyResponse` for a blank one.
[[nodiscard]] tl::expected<QString, ServiceError::Kind> transcription(const QByteArray& body);

/// What a refusal says for itself, as it stands; empty when it says nothing.
[[nodiscard]] QString errorMessage(const QByteArray& body);

/// The text without a code fence around it and without one tag around it such as <final_text>.
[[nodiscard]] QString stripWrappingFence(const QString& reply);

/// Puts the name where a placeholder asks for it, and drops lines that hold nothing but a placeholder.
/// The name is a template of ICU's; one that ICU refuses replaces nothing.
[[nodiscard]] QString fillPlaceholders(const QString& text, const QString& name);

/// Whether the reply to the connection test says that all is well.
[[nodiscard]] bool passesConnectionTest(const QString& reply);

} // namespace velorin::Replies

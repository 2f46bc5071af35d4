/// The body of a transcription request: a form in parts (multipart/form-data). Pure, any thread.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace velorin {

struct TranscriptionForm {
    QString boundary;
    QString model;
    std::optional<QString> prompt;   ///< Words that are likely; left out when blank.
    std::optional<QString> language; ///< Two letters; left out when blank.

    /// "Velorin-" and an identifier that no other request has.
    [[nodiscard]] static QString newBoundary();
    [[nodiscard]] QByteArray body(const QByteArray& audio) const;
};

} // namespace velorin

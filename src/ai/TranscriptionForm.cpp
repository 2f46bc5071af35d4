#include "ai/TranscriptionForm.h"

#include "text/WhiteSpace.h"

#include <QUuid>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QByteArray trimmed(const QString& text) {
    return WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).toUtf8();
}

QByteArray field(const QByteArray& boundary, const QByteArray& name, const QByteArray& value) {
    return "--" + boundary + "\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value +
           "\r\n";
}

QByteArray optionalField(const QByteArray& boundary, const QByteArray& name,
                         const std::optional<QString>& value) {
    const QByteArray text = value ? trimmed(*value) : QByteArray();
    return text.isEmpty() ? QByteArray() : field(boundary, name, text);
}

} // namespace

QString TranscriptionForm::newBoundary() {
    return u"Velorin-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

QByteArray TranscriptionForm::body(const QByteArray& audio) const {
    const QByteArray mark = boundary.toUtf8();
    const QByteArray head = field(mark, "model", trimmed(model)) + field(mark, "response_format", "json") +
                            optionalField(mark, "prompt", prompt) +
                            optionalField(mark, "language", language) + "--" + mark +
                            "\r\nContent-Disposition: form-data; name=\"file\"; filename=\"audio.wav\"\r\n"
                            "Content-Type: audio/wav\r\n\r\n";
    const QByteArray tail = "\r\n--" + mark + "--\r\n";
    QByteArray whole;
    whole.reserve(head.size() + audio.size() + tail.size());
    return whole.append(head).append(audio).append(tail);
}

} // namespace velorin

#include "platform/linux/recognition/Tokens.h"

namespace velorin {

std::optional<QByteArray> tokensFromBinary(const QByteArray& binary) {
    QByteArray text;
    qsizetype position = 0;
    const auto nextByte = [&] {
        return static_cast<qsizetype>(static_cast<unsigned char>(binary[position++]));
    };
    for (int number = 0; position < binary.size(); ++number) {
        qsizetype length = nextByte();
        if (length >= 128) {
            if (position == binary.size())
                return std::nullopt;
            length += -128 + 128 * nextByte();
        }
        if (length > binary.size() - position)
            return std::nullopt;
        text += binary.mid(position, length).toBase64();
        text += ' ';
        text += QByteArray::number(number);
        text += '\n';
        position += length;
    }
    return text;
}

} // namespace velorin

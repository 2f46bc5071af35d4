// What a provider may answer: any bytes, read as each of the replies that we know; and as a text that has
// come out of one, with a name behind its last line.
#include "ai/Replies.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace velorin;
    const QByteArray body(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    (void)Replies::chat(body);
    (void)Replies::transcription(body);
    (void)Replies::errorMessage(body);
    const QString text = QString::fromUtf8(body);
    (void)Replies::stripWrappingFence(text);
    (void)Replies::passesConnectionTest(text);
    const auto name = text.lastIndexOf(u'\n');
    (void)Replies::fillPlaceholders(text.left(name), text.mid(name + 1));
    return 0;
}

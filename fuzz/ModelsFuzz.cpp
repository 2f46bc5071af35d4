// What may be in the file of tokens of a model: a row a token comes of it, or nothing.
#include "platform/linux/recognition/Tokens.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray binary(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    const auto text = velorin::tokensFromBinary(binary);
    if (text && !text->isEmpty() && !text->endsWith('\n'))
        std::abort();
    return 0;
}

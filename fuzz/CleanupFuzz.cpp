// Compares the cleanup with its reference on whatever libFuzzer comes up with, and ends the process at the
// first difference.
//
// The first byte chooses the profile and how the others are read: as pieces of the vocabulary, so that
// triggers come up side by side, or as UTF-16 units, so that anything does. Text before a unit 1 is what is
// heard, before the next one what to write for it.
#include "tests/cleanup/agreement/Agreement.h"
#include "tests/cleanup/agreement/Vocabulary.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace velorin::agreement {
namespace {

QString fromPieces(const std::uint8_t* bytes, std::size_t size) {
    const auto& pieces = vocabulary();
    QString text;
    for (std::size_t i = 0; i < size; ++i) {
        if (bytes[i] < pieces.size())
            text += pieces[bytes[i]];
        else
            text += QChar(static_cast<char16_t>(bytes[i] % 0x80));
    }
    return text;
}

QString fromUnits(const std::uint8_t* bytes, std::size_t size) {
    QString text;
    for (std::size_t i = 0; i + 1 < size; i += 2)
        text += QChar(static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8));
    return text;
}

Input inputOf(const std::uint8_t* bytes, std::size_t size) {
    Input input;
    input.profile = allContextProfiles[bytes[0] % allContextProfiles.size()];
    const QString all = bytes[0] & 0x80 ? fromUnits(bytes + 1, size - 1) : fromPieces(bytes + 1, size - 1);
    const QStringList parts = all.split(QChar(u'\1'));
    input.text = parts.back();
    for (qsizetype i = 0; i + 2 < parts.size(); i += 2)
        input.replacements.append({QUuid(), parts[i], parts[i + 1]});
    return input;
}

void require(const std::optional<QString>& difference) {
    if (!difference)
        return;
    std::fprintf(stderr, "%s\n", difference->toLatin1().constData());
    std::abort();
}

} // namespace
} // namespace velorin::agreement

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace velorin::agreement;
    if (size < 2)
        return 0;
    const Input input = inputOf(bytes, size);
    require(differenceInClean(input));
    if (bytes[0] & 0x40)
        require(differenceInStages(input));
    return 0;
}

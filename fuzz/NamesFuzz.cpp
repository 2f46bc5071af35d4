// What a window may call itself: one line of bounded length comes of it, in which nothing moves the cursor.
#include "platform/linux/Applications.h"
#include "text/ForeignText.h"

#include <cstdint>
#include <cstdlib>

namespace velorin {
namespace {

void requireALine(const QString& text, qsizetype most) {
    if (text.size() > most || !text.isValidUtf16())
        std::abort();
    for (const QChar unit : text)
        if (unit.category() == QChar::Other_Control || unit == QChar::LineSeparator)
            std::abort();
}

} // namespace
} // namespace velorin

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace velorin;
    const QByteArray told(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    const auto names = told.split('\0');
    const auto name = [&](qsizetype at) { return QString::fromUtf8(names.value(at)); };
    const QString units(reinterpret_cast<const QChar*>(bytes),
                        size % 2 == 0 ? static_cast<qsizetype>(size / 2) : 0);
    for (const qsizetype most : {0, 1, 7, 128}) {
        requireALine(ForeignText::oneLine(name(0), most), most);
        requireALine(ForeignText::oneLine(units, most), most);
    }
    if (const auto identity = Applications::identify({name(0), name(1), name(2), name(3)})) {
        requireALine(identity->bundleIdentifier, ForeignText::longestName);
        requireALine(identity->kin, ForeignText::longestName);
    }
    return 0;
}

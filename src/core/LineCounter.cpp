#include "core/LineCounter.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <sys/stat.h>

namespace velorin {
namespace {

constexpr qint64 pieceSize = 256 * 1024;

} // namespace

std::optional<LineCounter::Count> LineCounter::count(const QString& path,
                                                     const std::atomic<bool>& isStopped) {
    struct stat status {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    const Identity identity(status.st_dev, status.st_ino);
    if (identity != file_ || status.st_size < endOfWhole_)
        startAnew();
    file_ = identity;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || !file.seek(endOfWhole_))
        return Count{.lines = 0, .bytes = status.st_size};
    return count(file, isStopped);
}

LineCounter::Count LineCounter::count(QIODevice& device, const std::atomic<bool>& isStopped) {
    // A mark of the byte order is one at the beginning only.
    QStringDecoder decoder(QStringDecoder::Utf8, endOfWhole_ == 0
                                                     ? QStringConverter::Flag::Default
                                                     : QStringConverter::Flag::ConvertInitialBom);
    bool hasRest = false; // of a line that has no line feed yet
    qint64 bytes = endOfWhole_;
    QByteArray piece;
    while (!isStopped && !decoder.hasError() && !(piece = device.read(pieceSize)).isEmpty()) {
        const QString text = decoder.decode(piece);
        qsizetype begin = 0;
        for (qsizetype feed = 0; (feed = text.indexOf(u'\n', begin)) >= 0; begin = feed + 1) {
            wholeLines_ += hasRest || feed > begin ? 1 : 0;
            hasRest = false;
        }
        hasRest = hasRest || begin < text.size();
        if (const auto feed = piece.lastIndexOf('\n'); feed >= 0)
            endOfWhole_ = bytes + feed + 1;
        bytes += piece.size();
    }
    // What is missing of a last character is missed now.
    const QString end = decoder.decode("\n");
    if (!decoder.hasError())
        return {.lines = wholeLines_ + (hasRest ? 1 : 0), .bytes = bytes};
    const qint64 size = device.size();
    startAnew();
    return {.lines = 0, .bytes = size};
}

} // namespace velorin

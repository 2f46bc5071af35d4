#include "core/PrivateFiles.h"

#include "platform/PrivateFolder.h"
#include "platform/WholeFile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin::PrivateFiles {
namespace {

/// Nobody waits for the end of a file that somebody has put in the place of ours.
constexpr off_t longestLine = 16 << 20;

QString folderOf(const QString& path) { return QFileInfo(path).path(); }

class Descriptor final {
public:
    explicit Descriptor(const QString& path)
        : descriptor_(::open(QFile::encodeName(path).constData(), O_RDWR | O_APPEND | O_CLOEXEC)) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (isOpen())
            ::close(descriptor_);
    }
    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    [[nodiscard]] int get() const { return descriptor_; }

private:
    int descriptor_;
};

/// Held by who appends or mends. Nobody waits for it: a process that is stopped may hold it for ever.
class Lock final {
public:
    explicit Lock(int descriptor)
        : descriptor_(descriptor), isHeld_(::flock(descriptor, LOCK_EX | LOCK_NB) == 0) {}
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() { ::flock(descriptor_, LOCK_UN); }
    [[nodiscard]] bool isHeld() const { return isHeld_; }

private:
    int descriptor_;
    bool isHeld_;
};

QByteArray readFrom(int descriptor, off_t begin, off_t end) {
    QByteArray bytes(end - begin, Qt::Uninitialized);
    const auto count = ::pread(descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()), begin);
    bytes.resize(std::max<qsizetype>(count, 0));
    return bytes;
}

QByteArray readFrom(int descriptor, off_t begin) {
    return readFrom(descriptor, begin, ::lseek(descriptor, 0, SEEK_END));
}

/// Where the last line begins; nothing when it has its line feed, or there is none. A line that is longer
/// than any of ours begins where that is seen.
std::optional<off_t> beginOfTornLine(int descriptor) {
    constexpr off_t step = 64 * 1024;
    const off_t size = ::lseek(descriptor, 0, SEEK_END);
    off_t begin = size;
    while (begin > 0 && size - begin <= longestLine) {
        const off_t end = begin;
        begin = std::max<off_t>(0, end - step);
        if (const auto feed = readFrom(descriptor, begin, end).lastIndexOf('\n'); feed >= 0)
            return begin + feed + 1 == size ? std::nullopt : std::optional<off_t>(begin + feed + 1);
    }
    return size > 0 ? std::optional<off_t>(begin) : std::nullopt;
}

/// The disk was full in the middle of a line: it goes, unless somebody has written behind it since.
void takeBack(int descriptor, off_t count) {
    const off_t end = ::lseek(descriptor, 0, SEEK_CUR);
    if (end == ::lseek(descriptor, 0, SEEK_END))
        (void)!::ftruncate(descriptor, end - count);
}

} // namespace

std::optional<QByteArray> read(const QString& path, qint64 mostBytes) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > mostBytes)
        return std::nullopt;
    QByteArray data = file.readAll();
    return file.error() == QFile::NoError ? std::optional(std::move(data)) : std::nullopt;
}

bool write(const QString& path, const QByteArray& data) {
    makePrivateFolder(folderOf(path));
    return replaceFile(path, data).has_value();
}

bool appendLine(const QString& path, const QByteArray& line) {
    makePrivateFolder(folderOf(path));
    const Descriptor file(path);
    if (!file.isOpen())
        return write(path, line + '\n');
    const Lock lock(file.get());
    // In one call, at the end as it is then: two processes never mix their lines.
    const QByteArray whole = line + '\n';
    const auto written = ::write(file.get(), whole.constData(), static_cast<std::size_t>(whole.size()));
    if (written > 0 && written < whole.size())
        takeBack(file.get(), written);
    return written == whole.size();
}

void mendLastLine(const QString& path, const std::function<bool(const QByteArray&)>& isWhole) {
    const Descriptor file(path);
    if (!file.isOpen())
        return;
    const Lock lock(file.get());
    const auto begin = lock.isHeld() ? beginOfTornLine(file.get()) : std::nullopt;
    if (!begin)
        return;
    const auto torn = readFrom(file.get(), *begin);
    if (torn.size() > longestLine || isWhole(torn))
        (void)!::write(file.get(), "\n", 1);
    else
        (void)!::ftruncate(file.get(), *begin);
}

} // namespace velorin::PrivateFiles

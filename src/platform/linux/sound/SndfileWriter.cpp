#include "platform/linux/sound/SndfileWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sndfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velorin {

namespace {

struct CloseSndfile {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using Handle = std::unique_ptr<SNDFILE, CloseSndfile>;

class SndfileWriter final : public AudioFileWriter {
public:
    SndfileWriter(Handle file, AudioFormat format) : file_(std::move(file)), format_(format) {}

    AudioFormat processingFormat() const override { return format_; }

    bool write(const AudioBuffer& buffer) override {
        if (buffer.format != format_)
            return false;
        const auto frames = static_cast<sf_count_t>(buffer.frames());
        if (const auto* integers = std::get_if<std::vector<qint16>>(&buffer.samples))
            return sf_writef_short(file_.get(), integers->data(), frames) == frames;
        if (const auto* floats = std::get_if<std::vector<float>>(&buffer.samples))
            return sf_writef_float(file_.get(), floats->data(), frames) == frames;
        return false;
    }

private:
    Handle file_;
    AudioFormat format_;
};

bool makeFolders(const QString& path) {
    if (QFileInfo::exists(path))
        return true;
    // What is made on the way is for the user alone from its first moment.
    const QString parent = QFileInfo(path).path();
    return makeFolders(parent) && mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0;
}

/// In a place that others write to as well, a folder of that name may be somebody else's, or a link.
bool makePrivateFolder(const QString& path) {
    struct stat status {};
    const QByteArray name = QFile::encodeName(path);
    if (!makeFolders(path) || lstat(name.constData(), &status) != 0)
        return false;
    const bool isOurs = S_ISDIR(status.st_mode) && status.st_uid == geteuid();
    const bool isPrivate = (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
    return isOurs && (isPrivate || chmod(name.constData(), S_IRWXU) == 0);
}

} // namespace

std::unique_ptr<AudioFileWriter> SndfileFactory::create(const QString& path, AudioFormat format) {
    if (!makePrivateFolder(QFileInfo(path).absolutePath()))
        return nullptr;
    const int descriptor = open(QFile::encodeName(path).constData(),
                                O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        return nullptr;
    SF_INFO info{};
    info.samplerate = static_cast<int>(format.sampleRate);
    info.channels = format.channels;
    info.format =
        SF_FORMAT_WAV | (format.samples == AudioFormat::Samples::int16 ? SF_FORMAT_PCM_16 : SF_FORMAT_FLOAT);
    Handle file(sf_open_fd(descriptor, SFM_WRITE, &info, SF_TRUE));
    if (!file)
        return nullptr;
    return std::make_unique<SndfileWriter>(std::move(file), format);
}

} // namespace velorin

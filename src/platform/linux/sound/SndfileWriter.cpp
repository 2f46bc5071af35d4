#include "platform/linux/sound/SndfileWriter.h"

#include "platform/PrivateFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <mutex>

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

/// The files of this process that may still be there.
///
/// They go with it by whichever way it ends: exit(), which Qt calls when the display goes away, does not come
/// back to the end of main, and so to nobody who owns a recording.
class PassingFiles final {
public:
    static PassingFiles& ofThisProcess() {
        static PassingFiles files;
        return files;
    }
    PassingFiles(const PassingFiles&) = delete;
    PassingFiles& operator=(const PassingFiles&) = delete;

    void add(const QString& path) {
        const std::scoped_lock lock(mutex_);
        paths_.removeIf([](const QString& known) { return !QFile::exists(known); });
        paths_.append(path);
    }

private:
    PassingFiles() = default;
    ~PassingFiles() {
        for (const QString& path : paths_)
            QFile::remove(path);
    }

    std::mutex mutex_;
    QStringList paths_;
};

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

/// In a place that others write to as well, a folder of that name may be somebody else's, or a link.
bool makeOwnFolder(const QString& path) {
    return !QFileInfo(path).isSymLink() && makePrivateFolder(path) && closeFolder(path);
}

} // namespace

std::unique_ptr<AudioFileWriter> SndfileFactory::create(const QString& path, AudioFormat format) {
    if (!makeOwnFolder(QFileInfo(path).absolutePath()))
        return nullptr;
    const int descriptor = open(QFile::encodeName(path).constData(),
                                O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        return nullptr;
    PassingFiles::ofThisProcess().add(path);
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

#include "app/transcribe/FileAudioInput.h"

#include <QFile>
#include <QMetaObject>

#include <algorithm>
#include <memory>

#include <sndfile.h>

namespace velorin {

namespace {

struct CloseSndfile {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

} // namespace

FileAudioInput::FileAudioInput(QString path, bool isInRealTime, std::function<void()> hasPlayed)
    : path_(std::move(path)), isInRealTime_(isInRealTime), hasPlayed_(std::move(hasPlayed)) {
    read();
}

FileAudioInput::~FileAudioInput() {
    isStopping_ = true;
    if (thread_.joinable())
        thread_.join();
}

void FileAudioInput::read() {
    SF_INFO info{};
    const std::unique_ptr<SNDFILE, CloseSndfile> file(
        sf_open(QFile::encodeName(path_).constData(), SFM_READ, &info));
    if (!file)
        return;
    format_ = {static_cast<double>(info.samplerate), info.channels, AudioFormat::Samples::float32};
    samples_.resize(static_cast<std::size_t>(info.frames * info.channels));
    const sf_count_t frames = sf_readf_float(file.get(), samples_.data(), info.frames);
    samples_.resize(static_cast<std::size_t>(std::max<sf_count_t>(frames, 0) * info.channels));
}

double FileAudioInput::seconds() const {
    return format_.channels == 0
               ? 0
               : static_cast<double>(samples_.size()) / format_.channels / format_.sampleRate;
}

QCoro::Task<AudioFormat> FileAudioInput::inputFormat() { co_return format_; }

QCoro::Task<tl::expected<void, QString>> FileAudioInput::start(AudioFormat /*format*/, quint32 frames,
                                                               Block block, Failure /*failure*/) {
    thread_ = std::thread([this, frames, block = std::move(block)] { play(frames, block); });
    co_return tl::expected<void, QString>{};
}

void FileAudioInput::play(quint32 frames, const Block& block) {
    const Time begin = std::chrono::steady_clock::now();
    const std::size_t step = frames * static_cast<std::size_t>(format_.channels);
    for (std::size_t first = 0; first < samples_.size() && !isStopping_; first += step) {
        const std::size_t last = std::min(first + step, samples_.size());
        const double heardAt = static_cast<double>(last) / format_.channels / format_.sampleRate;
        if (isInRealTime_)
            std::this_thread::sleep_until(begin +
                                          std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                              std::chrono::duration<double>(heardAt)));
        using Offset = std::vector<float>::difference_type;
        block({format_,
               std::vector<float>(samples_.begin() + static_cast<Offset>(first),
                                  samples_.begin() + static_cast<Offset>(last)),
               0});
    }
    end_ = std::chrono::steady_clock::now();
    QMetaObject::invokeMethod(&mainThread_, hasPlayed_, Qt::QueuedConnection);
}

QCoro::Task<void> FileAudioInput::stop() {
    isStopping_ = true;
    if (thread_.joinable())
        thread_.join();
    co_return;
}

} // namespace velorin

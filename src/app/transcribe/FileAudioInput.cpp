#include "app/transcribe/FileAudioInput.h"

#include <QFile>
#include <QMetaObject>

#include <utility>

namespace velorin {

FileAudioInput::FileAudioInput(const QString& path, double speed, std::function<void()> hasPlayed)
    : speed_(speed), hasPlayed_(std::move(hasPlayed)) {
    SF_INFO info{};
    file_.reset(sf_open(QFile::encodeName(path).constData(), SFM_READ, &info));
    if (!file_)
        return;
    format_ = {static_cast<double>(info.samplerate), info.channels, AudioFormat::Samples::float32};
    frames_ = static_cast<double>(info.frames);
}

FileAudioInput::~FileAudioInput() {
    isStopping_ = true;
    if (thread_.joinable())
        thread_.join();
}

double FileAudioInput::seconds() const { return file_ ? frames_ / format_.sampleRate : 0; }

QCoro::Task<AudioFormat> FileAudioInput::inputFormat() { co_return format_; }

QCoro::Task<tl::expected<void, QString>> FileAudioInput::start(AudioFormat /*format*/, quint32 frames,
                                                               Block block, Failure /*failure*/) {
    thread_ = std::thread([this, frames, block = std::move(block)] { play(frames, block); });
    co_return tl::expected<void, QString>{};
}

void FileAudioInput::play(quint32 frames, const Block& block) {
    const Time begin = std::chrono::steady_clock::now();
    const auto channels = static_cast<std::size_t>(format_.channels);
    double heard = 0;
    while (file_ && !isStopping_) {
        std::vector<float> samples(frames * channels);
        const sf_count_t got = sf_readf_float(file_.get(), samples.data(), frames);
        if (got <= 0)
            break;
        samples.resize(static_cast<std::size_t>(got) * channels);
        heard += static_cast<double>(got) / format_.sampleRate;
        if (speed_ != asFastAsItGoes)
            std::this_thread::sleep_until(begin +
                                          std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                                              std::chrono::duration<double>(heard / speed_)));
        block({format_, std::move(samples), 0});
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

/// A microphone that hears a sound file, in real time, so many times as fast, or as fast as it can be taken.
#pragma once

#include "platform/AudioInput.h"

#include <QObject>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include <sndfile.h>

namespace velorin {

class FileAudioInput final : public AudioInput {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Of a `speed`.
    static constexpr double inRealTime = 1;
    static constexpr double asFastAsItGoes = 0;

    /// `hasPlayed` is called on the main thread once the whole file has been heard.
    FileAudioInput(const QString& path, double speed, std::function<void()> hasPlayed);
    ~FileAudioInput() override;

    [[nodiscard]] QCoro::Task<AudioFormat> inputFormat() override;
    [[nodiscard]] QCoro::Task<tl::expected<void, QString>> start(AudioFormat format, quint32 frames,
                                                                 Block block, Failure failure) override;
    [[nodiscard]] QCoro::Task<void> stop() override;

    [[nodiscard]] double seconds() const;
    /// When the last sample was heard.
    [[nodiscard]] Time end() const { return end_; }

private:
    void play(quint32 frames, const Block& block);

    struct Close {
        void operator()(SNDFILE* file) const { sf_close(file); }
    };

    /// Read piece by piece: an hour of sound would fill the memory.
    std::unique_ptr<SNDFILE, Close> file_;
    double speed_;
    std::function<void()> hasPlayed_;
    AudioFormat format_;
    double frames_ = 0;
    Time end_;
    std::atomic<bool> isStopping_{false};
    QObject mainThread_;
    std::thread thread_;
};

} // namespace velorin

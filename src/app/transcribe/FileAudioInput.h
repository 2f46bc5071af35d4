/// A microphone that hears a sound file, in real time or as fast as it can be taken.
#pragma once

#include "platform/AudioInput.h"

#include <QObject>

#include <atomic>
#include <chrono>
#include <thread>

namespace velorin {

class FileAudioInput final : public AudioInput {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// `hasPlayed` is called on the main thread once the whole file has been heard.
    FileAudioInput(QString path, bool isInRealTime, std::function<void()> hasPlayed);
    ~FileAudioInput() override;

    [[nodiscard]] QCoro::Task<AudioFormat> inputFormat() override;
    [[nodiscard]] QCoro::Task<tl::expected<void, QString>> start(AudioFormat format, quint32 frames,
                                                                 Block block, Failure failure) override;
    [[nodiscard]] QCoro::Task<void> stop() override;

    [[nodiscard]] double seconds() const;
    /// When the last sample was heard.
    [[nodiscard]] Time end() const { return end_; }

private:
    void read();
    void play(quint32 frames, const Block& block);

    QString path_;
    bool isInRealTime_;
    std::function<void()> hasPlayed_;
    AudioFormat format_;
    std::vector<float> samples_;
    Time end_;
    std::atomic<bool> isStopping_{false};
    QObject mainThread_;
    std::thread thread_;
};

} // namespace velorin

#include "bench/speech/Spoken.h"

#include "platform/linux/sound/SndfileWriter.h"

#include <QFile>

#include <algorithm>
#include <cmath>
#include <memory>

#include <sndfile.h>

namespace velorin {

namespace {

struct CloseSndfile {
    void operator()(SNDFILE* file) const { sf_close(file); }
};

constexpr AudioFormat format{spokenRate, 1, AudioFormat::Samples::float32};

} // namespace

std::vector<float> spokenFile(const QString& path) {
    SF_INFO info{};
    const std::unique_ptr<SNDFILE, CloseSndfile> file(
        sf_open(QFile::encodeName(path).constData(), SFM_READ, &info));
    if (!file || info.samplerate != static_cast<int>(spokenRate) || info.channels != 1)
        return {};
    std::vector<float> samples(static_cast<std::size_t>(info.frames));
    samples.resize(static_cast<std::size_t>(sf_readf_float(file.get(), samples.data(), info.frames)));
    return samples;
}

std::vector<float> spokenSentence(const QString& name) {
    return spokenFile(QStringLiteral(VELORIN_SENTENCES "/%1.wav").arg(name));
}

std::vector<float> cutClose(const std::vector<float>& sound, double before, double after) {
    const auto isLoud = [](float sample) { return std::abs(sample) > 0.01F; };
    const auto first = std::find_if(sound.begin(), sound.end(), isLoud);
    const auto last = std::find_if(sound.rbegin(), sound.rend(), isLoud).base();
    std::vector<float> cut(static_cast<std::size_t>(before * spokenRate));
    cut.insert(cut.end(), first, std::max(first, last));
    cut.resize(cut.size() + static_cast<std::size_t>(after * spokenRate));
    return cut;
}

bool writeSound(const QString& path, const std::vector<float>& sound) {
    QFile::remove(path);
    const auto file = SndfileFactory().create(path, format);
    return file && file->write({format, sound, 0});
}

} // namespace velorin

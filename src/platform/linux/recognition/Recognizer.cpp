#include "platform/linux/recognition/Recognizer.h"

#include "platform/linux/recognition/Tokens.h"

#include <QFile>

#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A file that exists in memory only, under a path that this process can open.
class MemoryFile final {
public:
    explicit MemoryFile(const QByteArray& content)
        : descriptor_(memfd_create("velorin-tokens", MFD_CLOEXEC)) {
        isWhole_ = descriptor_ >= 0 && write(descriptor_, content.constData(),
                                             static_cast<std::size_t>(content.size())) == content.size();
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() {
        if (descriptor_ >= 0)
            close(descriptor_);
    }

    [[nodiscard]] bool isWhole() const { return isWhole_; }
    [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
    bool isWhole_ = false;
};

std::optional<QByteArray> readTokens(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return tokensFromBinary(file.readAll());
}

SherpaHandle<SherpaOnnxOfflineRecognizer> create(SherpaOnnxOfflineRecognizerConfig config) {
    config.feat_config.sample_rate = 16000;
    config.feat_config.feature_dim = 80;
    config.model_config.num_threads = 1; // A second one gains nothing.
    config.model_config.provider = "cpu";
    config.decoding_method = "greedy_search";
    return SherpaHandle<SherpaOnnxOfflineRecognizer>(SherpaOnnxCreateOfflineRecognizer(&config));
}

SherpaHandle<SherpaOnnxOfflineRecognizer> loadMoonshine(const QString& folder) {
    const auto tokens = readTokens(folder + u"/tokenizer.bin"_s);
    if (!tokens)
        return nullptr;
    // The run time reads its tokens from a file only; in memory nobody can change it meanwhile.
    const MemoryFile tokensFile(*tokens);
    if (!tokensFile.isWhole())
        return nullptr;
    const std::string encoder = QFile::encodeName(folder + u"/encoder_model.ort"_s).toStdString();
    const std::string decoder = QFile::encodeName(folder + u"/decoder_model_merged.ort"_s).toStdString();
    const std::string tokensPath = tokensFile.path();
    SherpaOnnxOfflineRecognizerConfig config{};
    config.model_config.moonshine.encoder = encoder.c_str();
    config.model_config.moonshine.merged_decoder = decoder.c_str();
    config.model_config.tokens = tokensPath.c_str();
    return create(config);
}

SherpaHandle<SherpaOnnxOfflineRecognizer> loadFamily(const Model& model, const QString& folder) {
    switch (model.family) {
    case ModelFamily::moonshine:
        return loadMoonshine(folder);
    default:
        return nullptr;
    }
}

std::string trimmed(std::string_view text) {
    constexpr std::string_view whiteSpace = " \t\r\n";
    const auto first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(whiteSpace) - first + 1));
}

} // namespace

std::unique_ptr<Recognizer> Recognizer::load(const Model& model, const QString& folder,
                                             const QString& /*localeIdentifier*/) {
    auto recognizer = std::make_unique<Recognizer>();
    recognizer->recognizer_ = loadFamily(model, folder);
    if (!recognizer->recognizer_)
        return nullptr;
    return recognizer;
}

std::string Recognizer::decode(std::span<const float> samples) {
    const SherpaHandle<SherpaOnnxOfflineStream> stream(SherpaOnnxCreateOfflineStream(recognizer_.get()));
    SherpaOnnxAcceptWaveformOffline(stream.get(), 16000, samples.data(),
                                    static_cast<int32_t>(samples.size()));
    SherpaOnnxDecodeOfflineStream(recognizer_.get(), stream.get());
    const SherpaHandle<SherpaOnnxOfflineRecognizerResult> result(
        SherpaOnnxGetOfflineStreamResult(stream.get()));
    return result && result->text ? trimmed(result->text) : std::string();
}

} // namespace velorin

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

/// The path of a file of the model, in the form that the run time wants.
std::string pathOf(const QString& folder, const Model& model, std::size_t file) {
    return QFile::encodeName(folder + u'/' + model.files.at(file).name).toStdString();
}

SherpaHandle<SherpaOnnxOfflineRecognizer> loadTransducer(const Model& model, const QString& folder) {
    const std::string encoder = pathOf(folder, model, 0);
    const std::string decoder = pathOf(folder, model, 1);
    const std::string joiner = pathOf(folder, model, 2);
    const std::string tokens = pathOf(folder, model, 3);
    SherpaOnnxOfflineRecognizerConfig config{};
    config.model_config.transducer = {encoder.c_str(), decoder.c_str(), joiner.c_str()};
    config.model_config.tokens = tokens.c_str();
    config.model_config.model_type = "nemo_transducer";
    return create(config);
}

SherpaHandle<SherpaOnnxOfflineRecognizer> loadSenseVoice(const Model& model, const QString& folder,
                                                         const std::string& language) {
    const std::string network = pathOf(folder, model, 0);
    const std::string tokens = pathOf(folder, model, 1);
    SherpaOnnxOfflineRecognizerConfig config{};
    config.model_config.sense_voice.model = network.c_str();
    config.model_config.sense_voice.language = language.c_str();
    config.model_config.sense_voice.use_itn = 1; // punctuation and numerals
    config.model_config.tokens = tokens.c_str();
    return create(config);
}

SherpaHandle<SherpaOnnxOfflineRecognizer> loadWhisper(const Model& model, const QString& folder,
                                                      const std::string& language) {
    const std::string encoder = pathOf(folder, model, 0);
    const std::string decoder = pathOf(folder, model, 1);
    const std::string tokens = pathOf(folder, model, 2);
    SherpaOnnxOfflineRecognizerConfig config{};
    config.model_config.whisper.encoder = encoder.c_str();
    config.model_config.whisper.decoder = decoder.c_str();
    config.model_config.whisper.language = language.c_str();
    config.model_config.whisper.task = "transcribe";
    config.model_config.tokens = tokens.c_str();
    return create(config);
}

SherpaHandle<SherpaOnnxOfflineRecognizer> loadFamily(const Model& model, const QString& folder,
                                                     const std::string& language) {
    switch (model.family) {
    case ModelFamily::moonshine:
        return loadMoonshine(folder);
    case ModelFamily::transducer:
        return loadTransducer(model, folder);
    case ModelFamily::senseVoice:
        return loadSenseVoice(model, folder, language);
    case ModelFamily::whisper:
        return loadWhisper(model, folder, language);
    case ModelFamily::voiceActivity:
        break;
    }
    return nullptr;
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
                                             const QString& localeIdentifier) {
    auto recognizer = std::make_unique<Recognizer>();
    recognizer->recognizer_ =
        loadFamily(model, folder, ModelCatalog::languageOf(localeIdentifier).toStdString());
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

#include "platform/linux/recognition/ModelCatalog.h"

#include <algorithm>
#include <numeric>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

struct Listed {
    QString name;
    qint64 about;
};

/// Files that lie side by side and whose publisher gives no digests.
std::vector<ModelFile> from(const QString& address, const std::vector<Listed>& listed) {
    std::vector<ModelFile> files;
    for (const Listed& file : listed)
        files.push_back({file.name, address + file.name, file.about, {}});
    return files;
}

const std::vector<Model>& table() {
    static const QString moonshine = u"https://download.moonshine.ai/model/tiny-en/quantized/tiny-en/"_s;
    static const std::vector<Model> rows{
        {.id = u"moonshine-tiny-en"_s,
         .languages = {u"en"_s},
         .family = ModelFamily::moonshine,
         .files = {{u"encoder_model.ort"_s,
                    {},
                    13281600,
                    "94e90a4654fc45cdfedb77c4c08e1739f48862998e58fada384b25118134f221"},
                   {u"decoder_model_merged.ort"_s,
                    {},
                    30412256,
                    "cf524c4862d36e9e5ab032eddc73637efd822d70e868ac575cf1a46e1e4708a0"},
                   {u"tokenizer.bin"_s,
                    {},
                    249974,
                    "6884b35fd6377d4c4d32336a0bc152f36b64d1e45b6503683cdc238250a8472d"}},
         .licence = u"MIT"_s,
         .memoryMegabytes = 145,
         .remark = u"English, small and quick"_s,
         .comesWithProgram = true},
        {.id = u"parakeet-tdt-0.6b-v3"_s,
         .languages = {u"es"_s, u"fr"_s, u"de"_s, u"en"_s},
         .family = ModelFamily::transducer,
         .files = from(
             u"https://huggingface.co/csukuangfj/sherpa-onnx-nemo-parakeet-tdt-0.6b-v3-int8/resolve/main/"_s,
             {{u"encoder.int8.onnx"_s, 652'000'000},
              {u"decoder.int8.onnx"_s, 11'800'000},
              {u"joiner.int8.onnx"_s, 6'360'000},
              {u"tokens.txt"_s, 93'900}}),
         .licence = u"CC-BY-4.0"_s,
         .memoryMegabytes = 1000,
         .remark = u"Spanish, French, German and English, large and accurate"_s},
        {.id = u"sense-voice-2024-07-17"_s,
         .languages = {u"ja"_s, u"zh"_s},
         .family = ModelFamily::senseVoice,
         .files = from(
             u"https://huggingface.co/csukuangfj/sherpa-onnx-sense-voice-zh-en-ja-ko-yue-2024-07-17/resolve/main/"_s,
             {{u"model.int8.onnx"_s, 239'000'000}, {u"tokens.txt"_s, 316'000}}),
         .licence = u"FunASR Model License"_s,
         .memoryMegabytes = 400,
         .remark = u"Japanese and Chinese"_s},
        {.id = u"whisper-small"_s,
         .languages = {u"hi"_s},
         .family = ModelFamily::whisper,
         .files = from(u"https://huggingface.co/csukuangfj/sherpa-onnx-whisper-small/resolve/main/"_s,
                       {{u"small-encoder.int8.onnx"_s, 112'000'000},
                        {u"small-decoder.int8.onnx"_s, 262'000'000},
                        {u"small-tokens.txt"_s, 817'000}}),
         .licence = u"MIT"_s,
         .memoryMegabytes = 700,
         .remark = u"Hindi"_s},
        {.id = u"silero-vad"_s,
         .languages = {},
         .family = ModelFamily::voiceActivity,
         .files = {{u"silero_vad_16k_op15.onnx"_s,
                    {},
                    1289603,
                    "7ed98ddbad84ccac4cd0aeb3099049280713df825c610a8ed34543318f1b2c49"}},
         .licence = u"MIT"_s,
         .memoryMegabytes = 5,
         .remark = u"Tells speech from noise"_s,
         .comesWithProgram = true},
    };
    return rows;
}

} // namespace

qint64 Model::size() const {
    return std::accumulate(files.begin(), files.end(), qint64{0},
                           [](qint64 sum, const ModelFile& file) { return sum + file.size; });
}

bool Model::canBeDownloaded() const {
    return std::none_of(files.begin(), files.end(),
                        [](const ModelFile& file) { return file.address.isEmpty(); });
}

std::span<const Model> ModelCatalog::models() { return table(); }

std::vector<const Model*> ModelCatalog::modelsFor(const QString& localeIdentifier) {
    std::vector<const Model*> serving;
    for (const Model& model : table()) {
        if (model.languages.contains(languageOf(localeIdentifier)))
            serving.push_back(&model);
    }
    return serving;
}

const Model* ModelCatalog::modelFor(const QString& localeIdentifier) {
    const auto serving = modelsFor(localeIdentifier);
    return serving.empty() ? nullptr : serving.front();
}

QString ModelCatalog::languageOf(const QString& localeIdentifier) {
    return localeIdentifier.section(u'-', 0, 0);
}

const Model& ModelCatalog::voiceActivity() {
    return *std::find_if(table().begin(), table().end(),
                         [](const Model& model) { return model.family == ModelFamily::voiceActivity; });
}

bool ModelCatalog::isSpaced(const QString& localeIdentifier) {
    const QString language = languageOf(localeIdentifier);
    return language != u"ja" && language != u"zh";
}

} // namespace velorin

#include "platform/linux/recognition/ModelCatalog.h"

#include <algorithm>
#include <numeric>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

const std::vector<Model>& table() {
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

QString languageOf(const QString& localeIdentifier) { return localeIdentifier.section(u'-', 0, 0); }

} // namespace

qint64 Model::size() const {
    return std::accumulate(files.begin(), files.end(), qint64{0},
                           [](qint64 sum, const ModelFile& file) { return sum + file.size; });
}

std::span<const Model> ModelCatalog::models() { return table(); }

const Model* ModelCatalog::modelFor(const QString& localeIdentifier) {
    const auto found = std::find_if(table().begin(), table().end(), [&](const Model& model) {
        return model.languages.contains(languageOf(localeIdentifier));
    });
    return found == table().end() ? nullptr : &*found;
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

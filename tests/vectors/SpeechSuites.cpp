#include "Suites.h"

#include "speech/AudioLevel.h"

#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {
namespace {

template <typename Sample>
std::vector<Sample> samples(const QJsonValue& json) {
    std::vector<Sample> values;
    for (const auto& value : json.toArray())
        values.push_back(static_cast<Sample>(value.toDouble()));
    return values;
}

QJsonValue level(const QJsonObject& in) {
    AudioBuffer buffer{{48000, 1, AudioFormat::Samples::float32}, {}, 0};
    if (in.contains(u"floats"))
        buffer.samples = samples<float>(in[u"floats"]);
    else if (in.contains(u"int16"))
        buffer.samples = samples<qint16>(in[u"int16"]);
    else if (in.contains(u"none"))
        buffer.unreadableFrames = static_cast<quint32>(in[u"none"].toInteger());
    else
        return QJsonValue::Undefined;
    return static_cast<double>(audioLevel(buffer));
}

} // namespace

void addSpeechSuites(SuiteTable& table) { table.add(u"speech.level"_s, &level, {.absolute = 1e-4}); }

} // namespace velorin::vectors

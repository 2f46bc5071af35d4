#include "app/Diagnostics.h"

#include <QDBusConnection>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

struct StageName {
    Stage stage;
    QLatin1StringView name;
};

constexpr std::array stageNames{
    StageName{Stage::keyDown, "keyDown"_L1},           StageName{Stage::firstSample, "firstSample"_L1},
    StageName{Stage::firstPreview, "firstPreview"_L1}, StageName{Stage::keyUp, "keyUp"_L1},
    StageName{Stage::lastFinal, "lastFinal"_L1},       StageName{Stage::cleaned, "cleaned"_L1},
    StageName{Stage::delivered, "delivered"_L1},       StageName{Stage::overlayPainted, "overlayPainted"_L1}};

} // namespace

Diagnostics::Diagnostics(const LatencyMarks& marks) : marks_(marks) {
    QDBusConnection::sessionBus().registerObject(u"/dev/orrin/velorin/diagnostics"_s, this,
                                                 QDBusConnection::ExportAllSlots);
}

QString Diagnostics::Latencies() const {
    QJsonArray list;
    for (const auto& dictation : marks_.dictations()) {
        QJsonObject times;
        const auto begin = dictation.at(Stage::keyDown);
        for (const auto& [stage, name] : stageNames)
            if (const auto time = dictation.at(stage); time && begin)
                times[name] = std::chrono::duration<double, std::milli>(*time - *begin).count();
        list.append(times);
    }
    return QString::fromUtf8(QJsonDocument(list).toJson(QJsonDocument::Compact));
}

} // namespace velorin

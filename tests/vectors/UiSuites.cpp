#include "Suites.h"

#include "tests/core/ModelDesk.h"
#include "ui/MenuRows.h"
#include "ui/OverlayLabels.h"
#include "ui/WaveformBars.h"

#include <QJsonArray>

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {
namespace {

OverlayPhase phase(const QString& name) {
    static const QStringList names{u"listening"_s, u"processing"_s, u"done"_s, u"error"_s};
    return static_cast<OverlayPhase>(names.indexOf(name));
}

std::optional<AIProcessing> processing(const QJsonValue& name) {
    static const QStringList names{u"polish"_s, u"edit"_s, u"generate"_s, u"transcribe"_s};
    return name.isString() ? std::optional(static_cast<AIProcessing>(names.indexOf(name.toString())))
                           : std::nullopt;
}

QJsonValue labels(const QJsonObject& in) {
    AppState state;
    state.setOverlayPhase(phase(in[u"overlayPhase"].toString()));
    state.setAIProcessing(processing(in[u"aiProcessing"]));
    state.setIsEditSession(in[u"isEditSession"].toBool());
    state.setIsGenerateSession(in[u"isGenerateSession"].toBool());
    state.setAutoInsert(in[u"autoInsert"].toBool());
    state.setAIProvider(*aiProviderFromRawString(in[u"aiProvider"].toString()));
    return QJsonObject{{u"state"_s, OverlayLabels::state(state)},
                       {u"placeholder"_s, OverlayLabels::placeholder(state)}};
}

QJsonValue liveText(const QJsonObject& in) {
    AppState state;
    if (in[u"previewText"].isString())
        state.setPreviewText(in[u"previewText"].toString());
    state.setCleanedText(in[u"cleanedText"].toString());
    state.setFinalizedText(in[u"finalizedText"].toString());
    state.setVolatileText(in[u"volatileText"].toString());
    return OverlayLabels::liveText(state);
}

QJsonValue elapsed(const QJsonObject& in) { return OverlayLabels::elapsed(in[u"seconds"].toDouble(0)); }

QJsonValue waveform(const QJsonObject& in) {
    QList<float> levels;
    for (const auto& level : in[u"levels"].toArray())
        levels.append(static_cast<float>(level.toDouble()));
    WaveformShape shape{.barCount = in[u"barCount"].toInt(),
                        .isIdle = in[u"idle"].toBool(),
                        .fixedBarWidth = std::nullopt,
                        .spacing = in[u"spacing"].toDouble(),
                        .minBarHeight = in[u"minBarHeight"].toDouble()};
    if (in[u"fixedBarWidth"].isDouble())
        shape.fixedBarWidth = in[u"fixedBarWidth"].toDouble();
    QJsonArray bars;
    for (const auto& bar : waveformBars(in[u"width"].toDouble(), in[u"height"].toDouble(), levels, shape))
        bars.append(QJsonObject{{u"x"_s, bar.x},
                                {u"y"_s, bar.y},
                                {u"width"_s, bar.width},
                                {u"height"_s, bar.height},
                                {u"radius"_s, bar.radius},
                                {u"opacity"_s, bar.opacity}});
    return bars;
}

void setContext(AppModel& model, const QJsonObject& in) {
    model.setContextMode(*contextModeFromRawString(in[u"contextMode"].toString()));
    model.setHasContext(in[u"hasContext"].toBool());
    model.setActiveProfile(*contextProfileFromRawString(in[u"activeProfile"].toString()));
}

QJsonValue contextSummary(const QJsonObject& in) {
    ModelDesk desk;
    auto& model = desk.start();
    setContext(model, in);
    return MenuRows::contextSummary(model);
}

QJsonValue menuRows(const QJsonObject& in) {
    ModelDesk desk;
    auto& model = desk.start();
    const auto configuration = ShortcutConfiguration::fromJson(in[u"configuration"]);
    if (!configuration)
        return QJsonValue::Undefined;
    setContext(model, in);
    model.setIsRecording(in[u"isRecording"].toBool());
    model.setShortcutConfiguration(*configuration);
    model.setAIGenerateEnabled(in[u"aiGenerateEnabled"].toBool());
    model.setAIGenerateTrigger(in[u"aiGenerateTrigger"].toString());
    model.setOnboardingCompleted(in[u"onboardingCompleted"].toBool());
    desk.finishing->configured = in[u"aiConfigured"].toBool();
    QJsonArray texts;
    for (const auto& row : MenuRows::rows(model))
        texts.append(row.kind == MenuRows::Kind::divider ? u"-"_s : row.text);
    return texts;
}

} // namespace

void addUiSuites(SuiteTable& table) {
    table.add(u"overlay.labels"_s, &labels);
    table.add(u"overlay.liveText"_s, &liveText);
    table.add(u"overlay.elapsed"_s, &elapsed);
    table.add(u"overlay.waveform"_s, &waveform, {.absolute = 1e-4});
    table.add(u"menu.contextSummary"_s, &contextSummary);
    table.add(u"menu.rows"_s, &menuRows);
}

} // namespace velorin::vectors

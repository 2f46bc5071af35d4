#include "Suites.h"

#include "shortcuts/DictationShortcutSessionController.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {
namespace {

std::optional<ShortcutEvent> eventNamed(const QString& text) {
    const auto found =
        std::ranges::find_if(allShortcutEvents, [&](ShortcutEvent event) { return name(event) == text; });
    return found == allShortcutEvents.end() ? std::nullopt : std::optional(*found);
}

std::optional<RecordingTriggerMode> modeNamed(const QString& text) {
    for (const auto mode : {RecordingTriggerMode::hold, RecordingTriggerMode::toggle}) {
        if (rawString(mode) == text)
            return mode;
    }
    return {};
}

QJsonValue sessionHandle(const QJsonObject& in) {
    DictationShortcutSessionController session{modeNamed(in[u"activeMode"].toString())};
    QJsonArray steps;
    for (const auto& name : in[u"events"].toArray()) {
        const auto event = eventNamed(name.toString());
        if (!event)
            return QJsonValue::Undefined;
        QJsonArray actions;
        for (const auto& action : session.handle(*event))
            actions.append(action.description());
        steps.append(QJsonObject{
            {u"activeMode"_s, session.activeMode ? QJsonValue(rawString(*session.activeMode)) : QJsonValue()},
            {u"actions"_s, actions}});
    }
    return steps;
}

} // namespace

void addShortcutSuites(SuiteTable& table) { table.add(u"session.handle"_s, &sessionHandle); }

} // namespace velorin::vectors

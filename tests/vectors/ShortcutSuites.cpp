#include "Suites.h"

#include "CaseFile.h"

#include "shortcuts/DictationShortcutSessionController.h"
#include "shortcuts/ShortcutKeyNames.h"
#include "shortcuts/ShortcutMatcher.h"
#include "shortcuts/ShortcutModels.h"

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

KeyCodeSet keyCodes(const QJsonValue& json) {
    KeyCodeSet codes;
    for (const auto& code : json.toArray())
        codes.insert(static_cast<quint16>(code.toInteger()));
    return codes;
}

std::optional<KeyCodeSet> optionalKeyCodes(const QJsonValue& json) {
    return json.isNull() ? std::nullopt : std::optional(keyCodes(json));
}

QJsonArray toJson(const KeyCodeSet& codes) {
    QJsonArray json;
    for (const auto code : codes)
        json.append(code);
    return json;
}

QJsonValue describe(const QJsonObject& in) {
    const auto binding = ShortcutBinding::fromJson(in[u"binding"]);
    if (!binding)
        return QJsonValue::Undefined;
    return QJsonObject{{u"displayName"_s, binding->displayName()}, {u"id"_s, binding->id()}};
}

QJsonValue configuration(const QJsonObject& in) {
    const auto configuration = ShortcutConfiguration::fromJson(in[u"configuration"]);
    if (!configuration)
        return QJsonValue::Undefined;
    QJsonArray conflicting;
    for (const auto& [first, second] : configuration->conflictingRoles())
        conflicting.append(QJsonArray{rawString(first), rawString(second)});
    return QJsonObject{{u"summary"_s, configuration->summary()},
                       {u"isDisabled"_s, configuration->isDisabled()},
                       {u"conflictingRoles"_s, conflicting}};
}

QJsonValue modifierDisplayNames(const QJsonObject& in) {
    return QJsonArray::fromStringList(ShortcutBinding::modifierDisplayNames({in[u"modifiers"].toInteger()},
                                                                            optionalKeyCodes(in[u"exact"])));
}

QJsonValue exactMatch(const QJsonObject& in) {
    return ShortcutBinding::exactModifierKeyCodesMatch(keyCodes(in[u"pressed"]), keyCodes(in[u"exact"]),
                                                       {in[u"permitted"].toInteger()});
}

QJsonValue modifiersFor(const QJsonObject& in) {
    return ShortcutBinding::modifiersFor(keyCodes(in[u"codes"])).rawValue;
}

QJsonValue conflicts(const QJsonObject& in) {
    const auto a = ShortcutBinding::fromJson(in[u"a"]);
    const auto b = ShortcutBinding::fromJson(in[u"b"]);
    return a && b ? QJsonValue(a->conflicts(*b)) : QJsonValue(QJsonValue::Undefined);
}

QJsonValue keyName(const QJsonObject& in) {
    return ShortcutKeyNames::name(static_cast<quint16>(in[u"keyCode"].toInteger()));
}

QJsonValue decode(const QJsonObject& in) {
    if (in[u"type"] == u"binding"_s) {
        const auto binding = ShortcutBinding::fromJson(in[u"json"]);
        return binding ? QJsonValue(binding->toJson()) : QJsonValue();
    }
    const auto configuration = ShortcutConfiguration::fromJson(in[u"json"]);
    return configuration ? QJsonValue(configuration->toJson()) : QJsonValue();
}

QJsonObject finalState(const ShortcutMatcher& matcher) {
    return {{u"pressedKeyCodes"_s, toJson(matcher.state.pressedKeyCodes)},
            {u"pressedModifierKeyCodes"_s, toJson(matcher.state.pressedModifierKeyCodes)},
            {u"holdIsActive"_s, matcher.holdIsActive},
            {u"toggleIsActive"_s, matcher.toggleIsActive},
            {u"copyAgainIsActive"_s, matcher.copyAgainIsActive},
            {u"consumedModifierKeyCodes"_s, toJson(matcher.consumedModifierKeyCodes)},
            {u"consumedKeyCodes"_s, toJson(matcher.consumedKeyCodes)}};
}

/// One event of a sequence: its decision, null where it is a change of the configuration.
QJsonValue matcherStep(ShortcutMatcher& matcher, const QJsonValue& event) {
    if (const auto updated = event[u"update"]; !updated.isUndefined()) {
        const auto configuration = ShortcutConfiguration::fromJson(updated);
        if (!configuration)
            return QJsonValue::Undefined;
        matcher.update(*configuration);
        return QJsonValue::Null;
    }
    return name(matcher.apply({.type = static_cast<quint32>(event[u"type"].toInteger()),
                               .keyCode = static_cast<quint16>(event[u"keyCode"].toInteger()),
                               .flags = unsignedInteger(event[u"flags"])}));
}

QJsonValue matcherSequence(const QJsonObject& in) {
    const auto configuration = ShortcutConfiguration::fromJson(in[u"configuration"]);
    if (!configuration)
        return QJsonValue::Undefined;
    ShortcutMatcher matcher{.configuration = *configuration};
    QJsonArray steps;
    for (const auto& event : in[u"events"].toArray()) {
        const auto decision = matcherStep(matcher, event);
        QJsonArray edges;
        for (const auto edge : matcher.takePendingEvents())
            edges.append(name(edge));
        steps.append(QJsonObject{{u"decision"_s, decision}, {u"edges"_s, edges}});
    }
    return QJsonObject{{u"steps"_s, steps}, {u"state"_s, finalState(matcher)}};
}

} // namespace

void addShortcutSuites(SuiteTable& table) {
    table.add(u"session.handle"_s, &sessionHandle);
    table.add(u"shortcut.describe"_s, &describe);
    table.add(u"shortcut.configuration"_s, &configuration);
    table.add(u"shortcut.modifierDisplayNames"_s, &modifierDisplayNames);
    table.add(u"shortcut.exactMatch"_s, &exactMatch);
    table.add(u"shortcut.modifiersFor"_s, &modifiersFor);
    table.add(u"shortcut.conflicts"_s, &conflicts);
    table.add(u"shortcut.keyName"_s, &keyName);
    table.add(u"shortcut.decode"_s, &decode);
    table.add(u"matcher.sequence"_s, &matcherSequence);
}

} // namespace velorin::vectors

// The stored form of bindings and configurations.
#include "shortcuts/ShortcutConfiguration.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr ShortcutBindingKind allKinds[] = {ShortcutBindingKind::disabled, ShortcutBindingKind::key,
                                            ShortcutBindingKind::modifierKey};

/// A whole number of 64 bits; 63.0 is one, true and "63" are none.
std::optional<qint64> integer(const QJsonValue& json) {
    if (!json.isDouble())
        return {};
    const auto value = json.toInteger(0);
    return value == 0 && json.toDouble() != 0 ? std::nullopt : std::optional(value);
}

std::optional<quint16> keyCode(const QJsonValue& json) {
    const auto value = integer(json);
    if (!value || *value < 0 || *value > std::numeric_limits<quint16>::max())
        return {};
    return static_cast<quint16>(*value);
}

std::optional<KeyCodeSet> keyCodes(const QJsonValue& json) {
    if (!json.isArray())
        return {};
    KeyCodeSet codes;
    for (const auto& element : json.toArray()) {
        const auto code = keyCode(element);
        if (!code)
            return {};
        codes.insert(*code);
    }
    return codes;
}

template <typename Enumeration>
std::optional<Enumeration> enumerator(const auto& all, const QJsonValue& json) {
    const auto found = std::ranges::find_if(
        all, [&](Enumeration value) { return json.isString() && rawString(value) == json.toString(); });
    return found == std::end(all) ? std::nullopt : std::optional(*found);
}

/// Absent, or null, which some writers put for it.
bool isAbsent(const QJsonValue& json) { return json.isUndefined() || json.isNull(); }

} // namespace

std::optional<ShortcutBinding> ShortcutBinding::fromJson(const QJsonValue& json) {
    const auto code = velorin::keyCode(json[u"keyCode"]);
    const auto display = json[u"keyDisplay"];
    const auto modifiers = integer(json[u"modifiers"]);
    const auto kind = enumerator<ShortcutBindingKind>(allKinds, json[u"kind"]);
    const auto preset = enumerator<ShortcutPreset>(allShortcutPresets, json[u"preset"]);
    const auto exact = keyCodes(json[u"exactModifierKeyCodes"]);
    if (!json.isObject() || !code || !display.isString() || !modifiers || !kind)
        return {};
    if ((!preset && !isAbsent(json[u"preset"])) || (!exact && !isAbsent(json[u"exactModifierKeyCodes"])))
        return {};
    return ShortcutBinding{.keyCode = *code,
                           .keyDisplay = display.toString(),
                           .modifiers = {*modifiers},
                           .kind = *kind,
                           .preset = preset,
                           .exactModifierKeyCodes = exact};
}

QJsonObject ShortcutBinding::toJson() const {
    QJsonObject json{{u"keyCode"_s, keyCode},
                     {u"keyDisplay"_s, keyDisplay},
                     {u"modifiers"_s, modifiers.rawValue},
                     {u"kind"_s, rawString(kind)}};
    if (preset)
        json.insert(u"preset"_s, rawString(*preset));
    if (exactModifierKeyCodes) {
        QJsonArray codes;
        for (const auto code : *exactModifierKeyCodes)
            codes.append(code);
        json.insert(u"exactModifierKeyCodes"_s, codes);
    }
    return json;
}

std::optional<ShortcutConfiguration> ShortcutConfiguration::fromJson(const QJsonValue& json) {
    const auto hold = ShortcutBinding::fromJson(json[u"hold"]);
    const auto toggle = ShortcutBinding::fromJson(json[u"toggle"]);
    const auto copyAgain = ShortcutBinding::fromJson(json[u"copyAgain"]);
    const auto permitted = integer(json[u"permittedAdditionalExactMatchModifiers"]);
    if (!hold || !toggle || !copyAgain || !permitted)
        return {};
    return ShortcutConfiguration{.hold = *hold,
                                 .toggle = *toggle,
                                 .copyAgain = *copyAgain,
                                 .permittedAdditionalExactMatchModifiers = {*permitted}};
}

std::optional<ShortcutConfiguration> ShortcutConfiguration::fromJson(const QByteArray& json) {
    // Null for what is no JSON; it has none of the fields.
    const auto document = QJsonDocument::fromJson(json);
    return document.isObject() ? fromJson(QJsonValue(document.object())) : std::nullopt;
}

QJsonObject ShortcutConfiguration::toJson() const {
    return {{u"hold"_s, hold.toJson()},
            {u"toggle"_s, toggle.toJson()},
            {u"copyAgain"_s, copyAgain.toJson()},
            {u"permittedAdditionalExactMatchModifiers"_s, permittedAdditionalExactMatchModifiers.rawValue}};
}

QByteArray ShortcutConfiguration::encoded() const {
    return QJsonDocument(toJson()).toJson(QJsonDocument::Compact);
}

} // namespace velorin

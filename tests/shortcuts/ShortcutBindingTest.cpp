#include "shortcuts/ShortcutBinding.h"

#include <QJsonArray>

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

using testing::ElementsAre;

constexpr ShortcutModifiers none{};

bool matches(const KeyCodeSet& pressed, const KeyCodeSet& exact, ShortcutModifiers permitted = none) {
    return ShortcutBinding::exactModifierKeyCodesMatch(pressed, exact, permitted);
}

ShortcutBinding keyA(ShortcutModifiers modifiers, std::optional<KeyCodeSet> exact = {}) {
    return {.keyCode = 0,
            .keyDisplay = u"A"_s,
            .modifiers = modifiers,
            .kind = ShortcutBindingKind::key,
            .exactModifierKeyCodes = std::move(exact)};
}

ShortcutBinding fn(ShortcutModifiers modifiers, std::optional<KeyCodeSet> exact = {}) {
    return {.keyCode = 63,
            .keyDisplay = u"Fn"_s,
            .modifiers = modifiers,
            .kind = ShortcutBindingKind::modifierKey,
            .exactModifierKeyCodes = std::move(exact)};
}

TEST(ShortcutModifiers, ContainsWholeSetsOnly) {
    const auto both = ShortcutModifiers::command | ShortcutModifiers::shift;
    EXPECT_EQ(both.rawValue, 9);
    EXPECT_TRUE(both.contains(ShortcutModifiers::shift));
    EXPECT_TRUE(both.contains(none));
    EXPECT_FALSE(both.contains(both | ShortcutModifiers::function));
    EXPECT_FALSE(both.contains({32}));
}

TEST(ShortcutBinding, TellsTheSidesOfAPairApart) {
    EXPECT_TRUE(matches({55}, {55}));
    EXPECT_FALSE(matches({54, 55}, {55}));
    EXPECT_FALSE(matches({54}, {55}));
    EXPECT_FALSE(matches({}, {55}));
}

TEST(ShortcutBinding, TakesEitherKeyOfAWholePair) {
    EXPECT_TRUE(matches({54}, {54, 55}));
    EXPECT_TRUE(matches({55}, {54, 55}));
    EXPECT_TRUE(matches({54, 55}, {54, 55}));
    EXPECT_FALSE(matches({}, {54, 55}));
}

TEST(ShortcutBinding, LetsOnlyPermittedModifiersPassAnExactMatch) {
    EXPECT_TRUE(matches({55, 63}, {55, 63}, ShortcutModifiers::shift));
    EXPECT_TRUE(matches({55, 56, 63}, {55, 63}, ShortcutModifiers::shift));
    EXPECT_FALSE(matches({55, 59, 63}, {55, 63}, ShortcutModifiers::shift));
    // Permission is for families that are not wanted: the other side of a wanted one stays forbidden.
    EXPECT_FALSE(matches({54, 55}, {55}, ShortcutModifiers::command));
}

TEST(ShortcutBinding, WantsNoModifierForAnEmptyExactSet) {
    for (const auto& exact : {KeyCodeSet{}, KeyCodeSet{0, 49, 57, 64}}) {
        EXPECT_TRUE(matches({}, exact));
        EXPECT_TRUE(matches({49, 57}, exact));
        EXPECT_FALSE(matches({63}, exact));
        EXPECT_TRUE(matches({63}, exact, ShortcutModifiers::function));
    }
}

TEST(ShortcutBinding, TakesTheModifiersOfKeys) {
    EXPECT_EQ(ShortcutBinding::modifiersFor({54, 56, 57, 64, 53}).rawValue, 9);
    EXPECT_EQ(ShortcutBinding::modifiersFor({54, 55, 56, 58, 59, 60, 61, 62, 63}).rawValue, 31);
    EXPECT_EQ(ShortcutBinding::modifiersFor({57}), none);
}

TEST(ShortcutBinding, NormalizesAndOrdersExactCodes) {
    EXPECT_EQ(ShortcutBinding::normalizedExactModifierKeyCodes({}), std::nullopt);
    EXPECT_EQ(ShortcutBinding::normalizedExactModifierKeyCodes(KeyCodeSet{}), std::nullopt);
    EXPECT_EQ(ShortcutBinding::normalizedExactModifierKeyCodes(KeyCodeSet{0, 57}), std::nullopt);
    EXPECT_EQ(ShortcutBinding::normalizedExactModifierKeyCodes(KeyCodeSet{0, 57, 60}), (KeyCodeSet{60}));
    EXPECT_THAT(
        ShortcutBinding::orderedExactModifierKeyCodes({0, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 99}),
        ElementsAre(55, 54, 59, 62, 58, 61, 56, 60, 63));
}

TEST(ShortcutBinding, LeavesTheKeyItselfOutOfTheShownExactCodes) {
    EXPECT_EQ(fn(none, KeyCodeSet{63}).displayedExactModifierKeyCodes(), std::nullopt);
    EXPECT_EQ(fn(none, KeyCodeSet{63}).displayName(), u"Fn"_s);
    EXPECT_EQ(fn(none, KeyCodeSet{54, 63}).displayedExactModifierKeyCodes(), (KeyCodeSet{54}));
    EXPECT_EQ(fn(none).displayedExactModifierKeyCodes(), std::nullopt);
    auto key = keyA(none, KeyCodeSet{63});
    key.keyCode = 63;
    EXPECT_EQ(key.displayName(), u"Fn 🌐 + A"_s);
}

TEST(ShortcutBinding, NamesModifiersBySideWhereItKnowsTheSide) {
    using Names = QStringList;
    const auto names = &ShortcutBinding::modifierDisplayNames;
    EXPECT_EQ(names({31}, {}), (Names{u"Cmd ⌘"_s, u"Ctrl ⌃"_s, u"Option ⌥"_s, u"Shift ⇧"_s, u"Fn 🌐"_s}));
    EXPECT_EQ(names({1}, KeyCodeSet{54}), Names{u"Right Cmd ⌘"_s});
    EXPECT_EQ(names({1}, KeyCodeSet{55}), Names{u"Cmd ⌘"_s});
    EXPECT_EQ(names({0}, KeyCodeSet{54, 55}), Names{u"Cmd ⌘"_s});
    EXPECT_EQ(names({8}, KeyCodeSet{62, 63}), (Names{u"Right Ctrl ⌃"_s, u"Shift ⇧"_s, u"Fn 🌐"_s}));
    EXPECT_EQ(names({0}, {}), Names());
}

TEST(ShortcutBinding, IsShownWithItsKeyLast) {
    EXPECT_EQ(fn(ShortcutModifiers::command).displayName(), u"Cmd ⌘ + Fn"_s);
    EXPECT_EQ(keyA(ShortcutModifiers::shift).displayName(), u"Shift ⇧ + A"_s);
    EXPECT_EQ(ShortcutBinding::disabled().displayName(), u"Disabled"_s);
    auto unknown = fn(none);
    unknown.keyCode = 99;
    EXPECT_EQ(unknown.displayName(), u"Fn"_s);
}

TEST(ShortcutBinding, HasAnIdThatTellsPresetsApart) {
    auto binding = fn(none);
    EXPECT_EQ(binding.id(), u"modifierKey:63:0:custom:"_s);
    binding.preset = ShortcutPreset::fnKey;
    EXPECT_EQ(binding.id(), u"modifierKey:63:0:fn:"_s);
    EXPECT_EQ(keyA({9}, KeyCodeSet{0, 54, 55, 60}).id(), u"key:0:9:custom:55,54,60"_s);
}

TEST(ShortcutBinding, ConflictsWhereNeitherExtendsTheOther) {
    EXPECT_FALSE(fn(none).conflicts(fn(ShortcutModifiers::command)));
    EXPECT_TRUE(fn(none).conflicts(fn(none, KeyCodeSet{63})));
    EXPECT_TRUE(keyA(ShortcutModifiers::command).conflicts(keyA(ShortcutModifiers::command, KeyCodeSet{54})));
    EXPECT_TRUE(keyA(ShortcutModifiers::command).conflicts(keyA(ShortcutModifiers::shift)));
    EXPECT_FALSE(keyA(none, KeyCodeSet{54}).conflicts(keyA(none, KeyCodeSet{55})));
    EXPECT_FALSE(keyA(none).conflicts(fn(none)));
    EXPECT_FALSE(ShortcutBinding::disabled().conflicts(ShortcutBinding::disabled()));
}

TEST(ShortcutBinding, NeverConflictsWhenItCanNeverFire) {
    // Recorded with an exact set that forbids its own key.
    EXPECT_FALSE(fn(none, KeyCodeSet{}).conflicts(fn(none, KeyCodeSet{})));
    EXPECT_FALSE(keyA({32}).conflicts(keyA({32})));
}

TEST(ShortcutBinding, ComparesAndHashesAllItsFields) {
    auto changed = keyA(none, KeyCodeSet{55});
    const auto binding = changed;
    EXPECT_EQ(binding, changed);
    EXPECT_EQ(qHash(binding, 7), qHash(changed, 7));
    changed.keyDisplay = u"B"_s;
    EXPECT_NE(binding, changed);
    EXPECT_NE(qHash(binding), qHash(changed));
    changed = binding;
    changed.exactModifierKeyCodes.reset();
    EXPECT_NE(binding, changed);
    changed = binding;
    changed.preset = ShortcutPreset::f5;
    EXPECT_NE(binding, changed);
}

TEST(ShortcutBinding, KeepsEverythingThroughJson) {
    for (const auto& binding : {fn(ShortcutModifiers::command), keyA({31}, KeyCodeSet{}), keyA({-1}),
                                keyA(none, KeyCodeSet{57, 65535}), ShortcutBinding::disabled()})
        EXPECT_EQ(ShortcutBinding::fromJson(binding.toJson()), binding);
    EXPECT_FALSE(keyA(none).toJson().contains(u"preset"));
    EXPECT_FALSE(keyA(none).toJson().contains(u"exactModifierKeyCodes"));
}

TEST(ShortcutBinding, RefusesWhatIsMissingOrOfAnotherKind) {
    const auto valid = fn(none, KeyCodeSet{63}).toJson();
    const auto with = [&](const QString& key, const QJsonValue& value) {
        auto json = valid;
        json.insert(key, value);
        return ShortcutBinding::fromJson(json);
    };
    for (const auto& key : {u"keyCode"_s, u"keyDisplay"_s, u"modifiers"_s, u"kind"_s}) {
        EXPECT_FALSE(with(key, QJsonValue::Undefined)) << key.toStdString();
        EXPECT_FALSE(with(key, QJsonValue::Null)) << key.toStdString();
        EXPECT_FALSE(with(key, true)) << key.toStdString();
        EXPECT_FALSE(with(key, QJsonArray())) << key.toStdString();
    }
    for (const auto& code :
         {QJsonValue(-1), QJsonValue(65536), QJsonValue(63.5), QJsonValue(u"63"_s), QJsonValue(1e300)})
        EXPECT_FALSE(with(u"keyCode"_s, code));
    EXPECT_FALSE(with(u"modifiers"_s, 1e19));
    EXPECT_FALSE(with(u"kind"_s, u"none"_s));
    EXPECT_FALSE(with(u"preset"_s, u""_s));
    EXPECT_FALSE(with(u"preset"_s, 1));
    EXPECT_FALSE(with(u"exactModifierKeyCodes"_s, 63));
    EXPECT_FALSE(with(u"exactModifierKeyCodes"_s, (QJsonArray{63, 70000})));
    EXPECT_FALSE(with(u"exactModifierKeyCodes"_s, (QJsonArray{QJsonValue::Null})));
    EXPECT_TRUE(with(u"keyCode"_s, 63.0));
    EXPECT_TRUE(with(u"somebodyElses"_s, 1));
    EXPECT_FALSE(ShortcutBinding::fromJson(QJsonValue::Null));
    EXPECT_FALSE(ShortcutBinding::fromJson(QJsonArray{valid}));
}

TEST(ShortcutBinding, TakesExactCodesAsASet) {
    auto json = keyA(none).toJson();
    json.insert(u"exactModifierKeyCodes"_s, QJsonArray{63, 55, 63.0});
    EXPECT_EQ(ShortcutBinding::fromJson(json), keyA(none, KeyCodeSet{55, 63}));
    json.insert(u"preset"_s, QJsonValue::Null);
    EXPECT_EQ(ShortcutBinding::fromJson(json), keyA(none, KeyCodeSet{55, 63}));
}

} // namespace
} // namespace velorin

#include "shortcuts/ShortcutConfiguration.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

ShortcutBinding key(quint16 keyCode, const QString& display) {
    return {.keyCode = keyCode, .keyDisplay = display, .kind = ShortcutBindingKind::key};
}

TEST(ShortcutConfiguration, HoldsFnAndTapsCommandFnByDefault) {
    const auto configuration = ShortcutConfiguration::defaultConfiguration();
    EXPECT_EQ(configuration.summary(), u"Hold Fn · Tap Cmd ⌘ + Fn"_s);
    EXPECT_EQ(configuration.hold.id(), u"modifierKey:63:0:fn:"_s);
    EXPECT_EQ(configuration.toggle.id(), u"modifierKey:63:1:fn:"_s);
    EXPECT_EQ(configuration.copyAgain, ShortcutBinding::disabled());
    EXPECT_FALSE(configuration.isDisabled());
    EXPECT_THAT(configuration.conflictingRoles(), IsEmpty());
}

TEST(ShortcutConfiguration, SaysSoWhenNothingIsSet) {
    const auto configuration = ShortcutConfiguration::disabled();
    EXPECT_EQ(configuration.summary(), u"Disabled"_s);
    EXPECT_TRUE(configuration.isDisabled());
    EXPECT_THAT(configuration.conflictingRoles(), IsEmpty());
}

TEST(ShortcutConfiguration, SummarizesOnlyWhatIsSet) {
    auto configuration =
        ShortcutConfiguration::disabled().replacing(ShortcutRole::copyAgain, key(99, u"%1 x"_s));
    EXPECT_EQ(configuration.summary(), u"Again %1 x"_s);
    configuration = configuration.replacing(ShortcutRole::hold, key(96, u"F5"_s));
    EXPECT_EQ(configuration.summary(), u"Hold F5 · Again %1 x"_s);
    EXPECT_FALSE(configuration.isDisabled());
}

TEST(ShortcutConfiguration, ReplacesOneRole) {
    auto original = ShortcutConfiguration::defaultConfiguration();
    original.permittedAdditionalExactMatchModifiers = ShortcutModifiers::shift;
    for (const auto role : allShortcutRoles) {
        const auto replaced = original.replacing(role, key(96, u"F5"_s));
        for (const auto other : allShortcutRoles)
            EXPECT_EQ(replaced.binding(other), other == role ? key(96, u"F5"_s) : original.binding(other));
        EXPECT_EQ(replaced.permittedAdditionalExactMatchModifiers, ShortcutModifiers::shift);
    }
}

TEST(ShortcutConfiguration, ListsConflictsInTheOrderOfTheRoles) {
    const auto same = key(96, u"F5"_s);
    const ShortcutConfiguration configuration{.hold = same, .toggle = same, .copyAgain = same};
    EXPECT_THAT(configuration.conflictingRoles(),
                ElementsAre(Pair(ShortcutRole::hold, ShortcutRole::toggle),
                            Pair(ShortcutRole::hold, ShortcutRole::copyAgain),
                            Pair(ShortcutRole::toggle, ShortcutRole::copyAgain)));
}

TEST(ShortcutConfiguration, KeepsEverythingThroughItsStoredForm) {
    auto configuration = ShortcutConfiguration::defaultConfiguration();
    configuration.copyAgain = {.keyCode = 8,
                               .keyDisplay = u"é⌘"_s,
                               .modifiers = {3},
                               .kind = ShortcutBindingKind::key,
                               .exactModifierKeyCodes = KeyCodeSet{}};
    configuration.permittedAdditionalExactMatchModifiers = {24};
    EXPECT_EQ(ShortcutConfiguration::fromJson(configuration.encoded()), configuration);
}

TEST(ShortcutConfiguration, RefusesAStoredFormThatIsNotWhole) {
    const auto valid = ShortcutConfiguration::defaultConfiguration().toJson();
    for (const auto& field : valid.keys()) {
        auto json = valid;
        json.remove(field);
        EXPECT_EQ(ShortcutConfiguration::fromJson(QJsonValue(json)), std::nullopt) << field.toStdString();
        json.insert(field, QJsonValue::Null);
        EXPECT_EQ(ShortcutConfiguration::fromJson(QJsonValue(json)), std::nullopt) << field.toStdString();
    }
    for (const QByteArray garbage : {"", "null", "[]", "{}", "{", "\xff", "63"})
        EXPECT_EQ(ShortcutConfiguration::fromJson(garbage), std::nullopt) << garbage.toStdString();
}

} // namespace
} // namespace velorin

#include "shortcuts/ShortcutKeyNames.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

TEST(ShortcutKeyNames, KnowsModifiersThenItsTableThenNumbers) {
    EXPECT_EQ(ShortcutKeyNames::name(61), u"Right Option ⌥"_s);
    EXPECT_EQ(ShortcutKeyNames::name(63), u"Fn"_s);
    EXPECT_EQ(ShortcutKeyNames::name(0), u"A"_s);
    EXPECT_EQ(ShortcutKeyNames::name(49), u"Space"_s);
    EXPECT_EQ(ShortcutKeyNames::name(111), u"F12"_s);
    EXPECT_EQ(ShortcutKeyNames::name(57), u"Key 57"_s);
    EXPECT_EQ(ShortcutKeyNames::name(99), u"Key 99"_s);
    EXPECT_EQ(ShortcutKeyNames::name(65535), u"Key 65535"_s);
}

TEST(ShortcutKeyNames, NamesFortyThreeKeysBesideTheModifiers) {
    int named = 0;
    for (quint32 code = 0; code <= 0xFFFF; ++code)
        named += ShortcutKeyNames::name(static_cast<quint16>(code)) != u"Key %1"_s.arg(code) ? 1 : 0;
    EXPECT_EQ(named, 43 + 9);
}

} // namespace
} // namespace velorin

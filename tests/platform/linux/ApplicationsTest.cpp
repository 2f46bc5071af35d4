#include "platform/linux/Applications.h"

#include <gtest/gtest.h>

#include <QSet>

using namespace Qt::Literals::StringLiterals;

namespace velorin::Applications {
namespace {

TEST(Applications, KnowsAnApplicationByAnyOfItsNames) {
    const Identity firefox{u"firefox"_s, u"org.mozilla.firefox"_s};
    EXPECT_EQ(identify({u"firefox-esr"_s, u"Navigator"_s, {}, {}}), firefox);
    EXPECT_EQ(identify({u"Firefox-esr"_s, {}, {}, {}}), firefox);
    EXPECT_EQ(identify({{}, {}, {}, u"/usr/lib/firefox-esr/firefox-esr"_s}), firefox);
    EXPECT_EQ(identify({{}, {}, u"org.mozilla.firefox"_s, {}}), firefox);
}

TEST(Applications, NamesTheNearestRelative) {
    const auto kinOf = [](const QString& windowClass) { return identify({windowClass, {}, {}, {}})->kin; };
    EXPECT_EQ(kinOf(u"Gnome-terminal"_s), u"com.apple.Terminal"_s);
    EXPECT_EQ(kinOf(u"konsole"_s), u"com.apple.Terminal"_s);
    EXPECT_EQ(kinOf(u"XTerm"_s), u"com.apple.Terminal"_s);
    EXPECT_EQ(kinOf(u"kitty"_s), u"net.kovidgoyal.kitty"_s);
    EXPECT_EQ(kinOf(u"thunderbird-esr"_s), u"com.apple.mail"_s);
    EXPECT_EQ(kinOf(u"Evolution"_s), u"com.apple.mail"_s);
    EXPECT_EQ(kinOf(u"libreoffice-writer"_s), u"com.microsoft.Word"_s);
    EXPECT_EQ(kinOf(u"Chromium"_s), u"com.google.Chrome"_s);
    EXPECT_EQ(kinOf(u"kate"_s), u"com.barebones.bbedit"_s);
    EXPECT_EQ(kinOf(u"Mousepad"_s), u"com.apple.TextEdit"_s);
    EXPECT_EQ(kinOf(u"Gedit"_s), u"com.apple.TextEdit"_s);
    EXPECT_EQ(kinOf(u"Element"_s), u"com.hnc.Discord"_s);
    EXPECT_EQ(kinOf(u"Code"_s), u"com.microsoft.VSCode"_s);
}

TEST(Applications, TakesAStrangerAsItsOwnKin) {
    EXPECT_EQ(identify({u"Gimp"_s, u"gimp"_s, {}, u"/usr/bin/gimp"_s}), (Identity{u"Gimp"_s, u"Gimp"_s}));
    EXPECT_EQ(identify({{}, {}, {}, u"/usr/bin/gimp"_s}), (Identity{u"gimp"_s, u"gimp"_s}));
    EXPECT_EQ(identify({}), std::nullopt);
}

TEST(Applications, GivesNoNameToTwoApplications) {
    QSet<QString> seen;
    for (const auto& row : table()) {
        const auto identifier = QString::fromLatin1(row.bundleIdentifier).toLower();
        EXPECT_FALSE(seen.contains(identifier)) << identifier.toStdString();
        seen.insert(identifier);
        for (const auto& name : QString::fromLatin1(row.names).split(u' ', Qt::SkipEmptyParts)) {
            EXPECT_FALSE(seen.contains(name)) << name.toStdString();
            EXPECT_EQ(name, name.toLower());
            seen.insert(name);
        }
    }
    EXPECT_GE(table().size(), 100u);
}

} // namespace
} // namespace velorin::Applications

#include "Cleaned.h"

#include "cleanup/Stages.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

using enum ContextProfile;

TEST(SpokenPunctuation, JoinsAddressesInMails) {
    EXPECT_EQ(cleaned(u"write to jo at acme dot org", email), "Write to jo@acme.org");
    EXPECT_EQ(cleaned(u"look at main dot rs", email), "Look at main.rs");
    EXPECT_EQ(cleaned(u"jo at main dot rs", generic), "Jo at main.rs");
    EXPECT_EQ(cleaned(u"jo at acme dot x", email), "Jo at acme.x") << "two letters at least";
}

TEST(SpokenPunctuation, JoinsSeparators) {
    EXPECT_EQ(cleaned(u"src slash lib slash main", generic), "Src/lib/main");
    EXPECT_EQ(cleaned(u"src slash lib slash main", code), "src/lib/main");
    EXPECT_EQ(cleaned(u"foo arrow bar"), "Foo->bar");
    EXPECT_EQ(cleaned(u"version 2 dot 5"), "Version 2.5");
    EXPECT_EQ(cleaned(u"main Dot rs"), "Main.rs");
    EXPECT_EQ(cleaned(u"user underscore id"), "User_id");
    EXPECT_EQ(cleaned(u"dot com"), "Dot com");
}

TEST(SpokenPunctuation, LeavesASeparatorBehindAFunctionWord) {
    EXPECT_EQ(cleaned(u"a slash b"), "A slash b");
    EXPECT_EQ(cleaned(u"the dot com bubble"), "The dot com bubble");
    EXPECT_EQ(cleaned(u"The dot com bubble"), "The dot com bubble");
    EXPECT_EQ(RuleCleaner::spokenPunctuation(u"the  dot \t com"_s, generic), u"the dot com");
}

TEST(SpokenPunctuation, ChainsUpToEightPasses) {
    QString spoken = u"a1"_s;
    for (int i = 0; i < 300; ++i)
        spoken += u" dot a1"_s;
    EXPECT_EQ(cleaned(spoken, code).find(" dot "), cleaned(spoken, code).rfind(" dot "));
    EXPECT_NE(cleaned(spoken, code).find(" dot "), std::string::npos) << "the rest of a long chain stays";
}

TEST(SpokenPunctuation, WritesLongFlagsEverywhere) {
    EXPECT_EQ(cleaned(u"double dash amend", chat), "--amend");
    EXPECT_EQ(cleaned(u"dash-dash no-edit", chat), "--no-edit");
    EXPECT_EQ(cleaned(u"hyphen dash x", chat), "--x");
    EXPECT_EQ(cleaned(u"dash dash", chat), "Dash dash");
    EXPECT_EQ(cleaned(u"dash dash !", chat), "Dash dash!");
}

TEST(SpokenPunctuation, WritesSymbolsInCode) {
    EXPECT_EQ(cleaned(u"x double equals y", code), "x == y");
    EXPECT_EQ(cleaned(u"x triple equals y", terminal), "x === y");
    EXPECT_EQ(cleaned(u"foo open paren bar close paren", code), "foo (bar)");
    EXPECT_EQ(cleaned(u"hash sign include", code), "# include");
    EXPECT_EQ(cleaned(u"open paren x close paren", generic), "Open paren x close paren");
    EXPECT_EQ(cleaned(u"equalsIgnoreCase equals 2equals", code), "equalsIgnoreCase = 2equals");
    EXPECT_EQ(cleaned(u"price dollar sign backslash", code), "price $ \\");
    EXPECT_EQ(cleaned(u"a comma b", chat), "A comma b");
}

TEST(SpokenPunctuation, PrefersTheLongerNameOfASymbol) {
    EXPECT_EQ(RuleCleaner::applyCodeSymbols(u"open square bracket close curly brace"_s), u"[ }");
    EXPECT_EQ(RuleCleaner::applyCodeSymbols(u"not equals forward slash"_s), u"!= /");
    EXPECT_EQ(RuleCleaner::applyCodeSymbols(u"Double  \t Pipe"_s), u"||");
    EXPECT_EQ(RuleCleaner::applyCodeSymbols(u"\u0600double equals"_s), u"\u0600double =")
        << "what stands within a character is passed over, and the shorter name found";
}

} // namespace
} // namespace velorin

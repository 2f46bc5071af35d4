#include "Cleaned.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

using enum ContextProfile;

TEST(Layout, BreaksParagraphsAndLines) {
    EXPECT_EQ(cleaned(u"first new paragraph second."), "First\n\nSecond.");
    EXPECT_EQ(cleaned(u"first next paragraph break second"), "First\n\nSecond");
    EXPECT_EQ(cleaned(u"first paragraph break second"), "First\n\nSecond");
    EXPECT_EQ(cleaned(u"first new line second"), "First\nSecond");
    EXPECT_EQ(cleaned(u"first line break second"), "First\nSecond");
    EXPECT_EQ(cleaned(u"first newline second"), "First\nSecond");
    EXPECT_EQ(cleaned(u"New Line, second"), "Second");
}

TEST(Layout, MakesBullets) {
    EXPECT_EQ(cleaned(u"groceries new bullet eggs next bullet milk"), "Groceries\n- Eggs\n- Milk");
    EXPECT_EQ(cleaned(u"groceries new bullet eggs next bullet milk", code), "groceries\n- eggs\n- milk");
    EXPECT_EQ(cleaned(u"bullet point one"), "- One");
    EXPECT_EQ(cleaned(u"new bullet points"), "- Points") << "what is more than the command stays";
}

TEST(Layout, TakesThePeriodOfATrailingCommandAlong) {
    EXPECT_EQ(cleaned(u"hello new line."), "Hello");
    EXPECT_EQ(cleaned(u"hello new line?!"), "Hello\n!");
}

TEST(Layout, LeavesWordsThatOnlyBeginLikeACommand) {
    EXPECT_EQ(cleaned(u"newlines and bulletpoint"), "Newlines and bulletpoint");
    EXPECT_EQ(cleaned(u"a new liner"), "A new liner");
    EXPECT_EQ(cleaned(u"a new line\u0301"), "A new line\u0301");
}

TEST(Layout, KeepsOneEmptyLineAtMost) {
    EXPECT_EQ(cleaned(u"a new paragraph new paragraph new line b"), "A\n\nB");
}

TEST(Layout, AppliesCommandsOneAfterTheOther) {
    EXPECT_EQ(cleaned(u"x new new paragraph bullet y"), "X\n- Y")
        << "the line ends that one command made are white space to the next";
}

TEST(Layout, TellsWhetherItChangedAnything) {
    EXPECT_TRUE(RuleCleaner::applyLayoutCommands(u"a new line b").hasChanged);
    const auto untouched = RuleCleaner::applyLayoutCommands(u" a  line b ");
    EXPECT_FALSE(untouched.hasChanged);
    EXPECT_EQ(untouched.text, u" a  line b ");
    EXPECT_EQ(RuleCleaner::applyLayoutCommands(u"a new line b").text, u"a \n b");
}

TEST(Layout, NormalizesLines) {
    EXPECT_EQ(RuleCleaner::normalizeLayout(u" a  b \r\n\t c\n\n\n\nd ", true), u"A b\nC\n\nD");
    EXPECT_EQ(RuleCleaner::normalizeLayout(u"- a\n-b\n - c", true), u"- A\n-b\n- C");
    EXPECT_EQ(RuleCleaner::normalizeLayout(u"a\n1 b\nⓒ", false), u"a\n1 b\nⓒ");
    EXPECT_EQ(RuleCleaner::normalizeLayout(u"ⓒ", true), u"ⓒ") << "no letter";
    EXPECT_EQ(RuleCleaner::normalizeLayout(u"a \u0301 b", true), u"A \u0301 b")
        << "a space that carries a mark";
    EXPECT_EQ(RuleCleaner::normalizeLayout(u"\n \n", true), u"");
}

} // namespace
} // namespace velorin

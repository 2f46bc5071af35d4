#include "text/Pattern.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

TEST(Pattern, FindsAllMatchesWithoutRegardToCase) {
    const Pattern pattern(u"\\b(no)(x)?");
    const auto matches = pattern.matches(u"No, nox knot NO");
    ASSERT_EQ(matches.size(), 3U);
    EXPECT_EQ(matches[0].groups[0], (Pattern::Range{0, 2}));
    EXPECT_EQ(matches[0].groups[2], (Pattern::Range{0, 0})) << "took no part";
    EXPECT_EQ(matches[1].groups[2], (Pattern::Range{6, 7}));
    EXPECT_EQ(matches[2].start(), 13);
    EXPECT_TRUE(pattern.matches(u"").empty());
    EXPECT_TRUE(pattern.matches(QStringView()).empty());
}

TEST(Pattern, MatchesAtAPositionSeeingWhatStandsBefore) {
    const Pattern pattern(u"(?<!\\d)no");
    EXPECT_TRUE(pattern.matchAt(u"xno", 1));
    EXPECT_FALSE(pattern.matchAt(u"1no", 1));
    EXPECT_FALSE(pattern.matchAt(u"xno", 0));
    EXPECT_EQ(pattern.firstMatch(u"1no no")->start(), 4);
}

TEST(Pattern, ReplacesByIcuTemplates) {
    const Pattern pattern(u"(\\w+) at (\\w+)");
    EXPECT_EQ(pattern.replaceAll(u"jo at acme, al AT home"_s, u"$1@$2\\$"), u"jo@acme$, al@home$"_s);
    const QString untouched = u"nothing here"_s;
    EXPECT_EQ(pattern.replaceAll(untouched, u"$1").constData(), untouched.constData()) << "no copy";
    EXPECT_EQ(Pattern(u"a").replaceAll(QString(), u"b"), QString());
}

TEST(Pattern, ThatDoesNotCompileLeavesTheTextAlone) {
    EXPECT_FALSE(Pattern::compile(u"(a"));
    EXPECT_TRUE(Pattern::compile(u"(a)"));
    const Pattern broken(u"[a");
    EXPECT_FALSE(broken.isValid());
    EXPECT_TRUE(broken.matches(u"a").empty());
    EXPECT_FALSE(broken.firstMatch(u"a") || broken.matchAt(u"a", 0));
    EXPECT_EQ(broken.replaceAll(u"a"_s, u"b"), u"a"_s);
}

TEST(Pattern, WithAnImpossibleTemplateLeavesTheTextAlone) {
    EXPECT_EQ(Pattern(u"a").replaceAll(u"banana"_s, u"$7"), u"banana"_s);
}

TEST(Pattern, EscapedTextMatchesItself) {
    for (const QString& text : {u"a.b*(c)[d]{e}^$|\\+?"_s, u"\\E\\Q$1 #-&~ _é🙂東\t\n"_s, u"1²_"_s}) {
        const auto pattern = Pattern::compile(Pattern::escaped(text));
        ASSERT_TRUE(pattern) << text.toStdString();
        const auto match = pattern->firstMatch(QString(u"x"_s + text));
        ASSERT_TRUE(match) << text.toStdString();
        EXPECT_EQ(match->groups[0], (Pattern::Range{1, 1 + text.size()}));
    }
    EXPECT_EQ(Pattern::escaped(u"a.b 1"), u"a\\.b\\ 1"_s);
}

TEST(Pattern, HasNoLimitOnBacktracking) {
    const QString longText = QString(2'000'000, u'a') + u'b';
    EXPECT_EQ(Pattern(u"(?:a|x)*b").matches(longText).size(), 1U);
}

TEST(Pattern, TakesUnpairedSurrogates) {
    const char16_t units[] = {0xDC00, u'a', 0xD800};
    const QString text(reinterpret_cast<const QChar*>(units), 3);
    EXPECT_EQ(Pattern(u"a").replaceAll(text, u"").size(), 2);
}

TEST(Pattern, ServesManyThreads) {
    const Pattern pattern(u"(\\w)(\\w)");
    const auto work = [&pattern] {
        for (int i = 0; i < 200; ++i)
            EXPECT_EQ(pattern.replaceAll(u"abcd"_s, u"$2$1"), u"badc"_s);
    };
    std::thread one(work);
    std::thread two(work);
    one.join();
    two.join();
}

} // namespace
} // namespace velorin

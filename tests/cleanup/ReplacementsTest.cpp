#include "cleanup/RuleCleaner.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

struct Pair {
    QString heard;
    QString replacement;
};

std::string replaced(QStringView text, const std::vector<Pair>& pairs) {
    QList<WordReplacement> list;
    for (const auto& [heard, replacement] : pairs)
        list.append({QUuid::createUuid(), heard, replacement});
    return RuleCleaner::applyReplacements(text, list).toStdString();
}

TEST(Replacements, WithoutUsableEntriesLeaveTheTextAlone) {
    EXPECT_EQ(replaced(u" a  b\n", {}), " a  b\n");
    EXPECT_EQ(replaced(u" a  b\n", {{u"a"_s, u" \t"_s}, {u""_s, u"x"_s}}), " a  b\n");
}

TEST(Replacements, PreferTheLongerPhrase) {
    EXPECT_EQ(replaced(u"new york, york", {{u"york"_s, u"Yorkshire"_s}, {u"new york"_s, u"NYC"_s}}),
              "NYC, Yorkshire");
}

TEST(Replacements, TakeWholeWordsOnly) {
    EXPECT_EQ(replaced(u"cats cat-like 2cat cat", {{u"cat"_s, u"dog"_s}}), "cats dog-like 2cat dog");
    EXPECT_EQ(replaced(u"cat\u0301 \u0301cat", {{u"cat"_s, u"dog"_s}}), "cat\u0301 \u0301dog");
}

TEST(Replacements, CarryACapitalOver) {
    EXPECT_EQ(replaced(u"Cat cat CAT", {{u"cat"_s, u"dog"_s}}), "Dog dog Dog");
    EXPECT_EQ(replaced(u"Iphone", {{u"iphone"_s, u"iPhone"_s}}), "IPhone");
    EXPECT_EQ(replaced(u"mylib MYLIB", {{u"mylib"_s, u"MyLib"_s}}), "MyLib MyLib");
    EXPECT_EQ(replaced(u"E\u0301a", {{u"e\u0301a"_s, u"ßx"_s}}), "SSx");
    EXPECT_EQ(replaced(u"a ß b", {{u"s"_s, u"x"_s}}), "a ß b") << "half of what it folds to";
}

TEST(Replacements, MatchWhiteSpaceOnlyByItself) {
    EXPECT_EQ(replaced(u"a b a  b", {{u" a b "_s, u"c"_s}}), "c a  b");
}

TEST(Replacements, AreNoPatternsAndNoTemplates) {
    EXPECT_EQ(replaced(u"axb a.b", {{u"a.b"_s, u"$1\\0"_s}}), "axb $1\\0");
    EXPECT_EQ(replaced(u"(x) \\E [", {{u"(x)"_s, u"1"_s}, {u"\\E"_s, u"2"_s}, {u"["_s, u"3"_s}}), "1 2 3");
    EXPECT_EQ(replaced(u"a|b $1", {{u"a|b"_s, u"\\Q"_s}, {u"$1"_s, u"a|b"_s}}), "\\Q a|b");
}

TEST(Replacements, OfEntriesThatDifferByCaseTheLaterOneWins) {
    EXPECT_EQ(replaced(u"foo FOO", {{u"Foo"_s, u"One"_s}, {u"fOO"_s, u"Two"_s}}), "Two Two");
}

TEST(Replacements, AreNotSearchedAgain) {
    EXPECT_EQ(replaced(u"a b", {{u"a"_s, u"b"_s}, {u"b"_s, u"c"_s}}), "b c");
    EXPECT_EQ(replaced(u"a", {{u"a"_s, u"a a"_s}}), "a a");
}

TEST(Replacements, FoldCaseInAnyScript) {
    EXPECT_EQ(replaced(u"ПРИВЕТ STRASSE", {{u"привет"_s, u"Hi"_s}, {u"straße"_s, u"Road"_s}}), "Hi STRASSE")
        << "found, but lower case tells the two apart";
    EXPECT_EQ(replaced(u"ſo", {{u"so"_s, u"x"_s}}), "ſo");
}

TEST(Replacements, ServeManyThreadsWithTheirOwnLists) {
    const auto work = [](const QString& written) {
        for (int i = 0; i < 200; ++i)
            EXPECT_EQ(replaced(u"a", {{u"a"_s, written}}), written.toStdString());
    };
    std::thread one(work, u"x"_s);
    std::thread two(work, u"y"_s);
    one.join();
    two.join();
}

} // namespace
} // namespace velorin

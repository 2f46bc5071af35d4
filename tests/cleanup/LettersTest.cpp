#include "cleanup/Letters.h"

#include "text/Pattern.h"

#include <gtest/gtest.h>

#include <QString>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QString of(char32_t c) { return QString::fromUcs4(&c, 1); }

template <typename Check>
void forEachCodePoint(Check check) {
    for (char32_t c = 1; c < 0x110000; ++c) {
        if (c < 0xD800 || c > 0xDFFF)
            check(c);
    }
}

/// All code points in one text, spaces between them, so that one pattern can be asked of all at once.
QString allCodePoints() {
    QString text;
    forEachCodePoint([&](char32_t c) { text += u' ' + of(c); });
    return text;
}

std::vector<bool> matchedStarts(QStringView pattern, const QString& text) {
    std::vector<bool> starts(static_cast<std::size_t>(text.size()) + 1);
    for (const auto& match : Pattern(pattern).matches(text))
        starts[static_cast<std::size_t>(match.start())] = true;
    return starts;
}

TEST(Letters, ArePlainWhereAPatternTakesThemForPlain) {
    const QString text = allCodePoints();
    const auto letters = matchedStarts(u"[a-z]", text);
    const auto alphanumerics = matchedStarts(u"[A-Za-z0-9]", text);
    for (qsizetype i = 0; i < text.size(); ++i) {
        ASSERT_EQ(Letters::isPlainLetter(text[i].unicode()), letters[static_cast<std::size_t>(i)]) << i;
        ASSERT_EQ(Letters::isPlainAlphanumeric(text[i].unicode()),
                  alphanumerics[static_cast<std::size_t>(i)]);
    }
}

TEST(Letters, GuardsSeeTheLettersAndNumbersThatPatternsSee) {
    const QString text = allCodePoints();
    const auto free = matchedStarts(u"(?![\\p{L}\\p{N}]).", text);
    const auto freeBefore = matchedStarts(u"(?<![\\p{L}\\p{N}]) ", text);
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u' ' && i > 1) {
            ASSERT_EQ(Letters::isFreeBefore(text, i), freeBefore[static_cast<std::size_t>(i)]) << i;
        } else if (!text[i].isLowSurrogate() && text[i] != u'\n' && text[i] != u'\r') {
            const bool isFree = free[static_cast<std::size_t>(i)];
            const bool isLineEnd = text[i] == u'\u0085' || text[i] == u'\u2028' || text[i] == u'\u2029' ||
                                   (text[i] >= u'\n' && text[i] <= u'\r');
            ASSERT_TRUE(isLineEnd || Letters::isFreeBehind(text, i) == isFree) << i;
        }
    }
}

TEST(Letters, WordsBeginAndEndWherePatternsSay) {
    for (const QStringView form : {u"%1", u"a%1", u"%1a", u" %1 ", u"a%1 ", u"\u0301%1a", u"a\u200B%1"}) {
        QString text;
        forEachCodePoint([&](char32_t c) {
            if (c % 7 == 0 || c < 0x3000)
                text += u'\n' + form.toString().replace(u"%1"_s, of(c));
        });
        const auto starts = matchedStarts(u"\\b", text);
        for (qsizetype i = 0; i < text.size(); ++i) {
            if (!text[i].isLowSurrogate()) {
                ASSERT_EQ(Letters::isWordBoundary(text, i), starts[static_cast<std::size_t>(i)]) << i;
            }
        }
    }
}

TEST(Letters, RunsAreKeyedWithoutRegardToCase) {
    const auto run = Letters::nextRun(u"12 Dot.", 0);
    EXPECT_EQ(run.start, 3);
    EXPECT_EQ(run.end, 6);
    EXPECT_EQ(run.key, wordKey(u"dot"));
    EXPECT_EQ(Letters::nextRun(u"ſlaſh", 0).key, wordKey(u"slash"));
    EXPECT_EQ(Letters::nextRun(u"\u212Anow", 0).key, wordKey(u"know"));
    EXPECT_EQ(Letters::nextRun(u"A\uFB06erisk", 0).key, wordKey(u"asterisk"));
    EXPECT_EQ(Letters::nextRun(u"abcdefghijklm", 0).key, WordKey{0}) << "too long to be anything";
    EXPECT_EQ(Letters::nextRun(u"ab えーと", 2).key, Letters::foreignFiller);
    EXPECT_FALSE(Letters::nextRun(u"12 🙂", 0));
    EXPECT_FALSE(Letters::nextRun(u"", 0));
}

TEST(Letters, WordMapFindsWhatItWasGivenAndNothingElse) {
    WordMap<int> map;
    map[wordKey(u"dot")] = 1;
    map[wordKey(u"dash")] = 2;
    map[wordKey(u"dot")] += 10;
    EXPECT_EQ(*map.find(wordKey(u"DOT")), 11);
    EXPECT_EQ(*map.find(wordKey(u"dash")), 2);
    EXPECT_EQ(map.find(wordKey(u"das")), nullptr);
}

} // namespace
} // namespace velorin

#include "text/Graphemes.h"

#include <QString>

#include <unicode/brkiter.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

TEST(Graphemes, CountsWhatPeopleSee) {
    EXPECT_EQ(Graphemes::count(u""), 0);
    EXPECT_EQ(Graphemes::count(QStringView()), 0);
    EXPECT_EQ(Graphemes::count(u"abc"), 3);
    EXPECT_EQ(Graphemes::count(u"e\u0301 👩\u200D👩\u200D👧 🇩🇪🇫🇷"), 6);
    EXPECT_EQ(Graphemes::count(u"\r\n\n\r"), 3);
    EXPECT_EQ(Graphemes::count(u"각\u1100\u1161\u11A8"), 2);
}

TEST(Graphemes, TakesAndDropsWholeCharacters) {
    const QStringView text = u"e\u0301🙂b";
    EXPECT_EQ(Graphemes::first(text), u"e\u0301");
    EXPECT_EQ(Graphemes::last(text), u"b");
    EXPECT_EQ(Graphemes::prefix(text, 2), u"e\u0301🙂");
    EXPECT_EQ(Graphemes::drop(text, 2), u"b");
    EXPECT_EQ(Graphemes::prefix(text, 9), text);
    EXPECT_EQ(Graphemes::drop(text, 9), u"");
    EXPECT_EQ(Graphemes::prefix(text, 0), u"");
    EXPECT_EQ(Graphemes::last(u".\u0301"), u".\u0301");
    EXPECT_TRUE(Graphemes::first(u"").isEmpty() && Graphemes::last(u"").isEmpty());
}

TEST(Graphemes, KnowsBoundaries) {
    const QStringView text = u"ae\u0301";
    EXPECT_TRUE(Graphemes::isBoundary(text, 0) && Graphemes::isBoundary(text, 1) &&
                Graphemes::isBoundary(text, 3));
    EXPECT_FALSE(Graphemes::isBoundary(text, 2) || Graphemes::isBoundary(text, -1) ||
                 Graphemes::isBoundary(text, 4));
    EXPECT_FALSE(Graphemes::isBoundary(u"🙂", 1)) << "within a pair of surrogates";
    EXPECT_FALSE(Graphemes::isBoundary(u"\r\n", 1));
}

TEST(Graphemes, BeginsWithWholeCharacters) {
    EXPECT_TRUE(Graphemes::beginsWith(u"- a", u"- "));
    EXPECT_FALSE(Graphemes::beginsWith(u"- \u0301a", u"- "));
    EXPECT_FALSE(Graphemes::beginsWith(u"e\u0301", u"e"));
    EXPECT_TRUE(Graphemes::beginsWith(u"a", u""));
    EXPECT_FALSE(Graphemes::beginsWith(u"", u"a"));
}

/// Texts in which every rule of segmentation comes up.
QString randomText(std::mt19937& random) {
    static const char32_t alphabet[] = {U'a',
                                        U' ',
                                        U'\r',
                                        U'\n',
                                        U'\0',
                                        U'é',
                                        U'\u0301',
                                        U'\u200D',
                                        U'👩',
                                        U'❤',
                                        U'\uFE0F',
                                        U'🇩',
                                        U'\u1100',
                                        U'\u1161',
                                        U'\u11A8',
                                        U'각',
                                        U'\u0600',
                                        U'\u0903',
                                        U'©',
                                        U'\u00AD',
                                        U'क',
                                        U'\u094D',
                                        U'か',
                                        U'\u3099',
                                        U'東',
                                        char32_t{0xD800},
                                        char32_t{0xDC00},
                                        U'\u0483',
                                        U'я',
                                        U'〰'};
    QString text;
    std::uniform_int_distribution<std::size_t> pick(0, std::size(alphabet) - 1);
    for (std::size_t length = pick(random) / 3; length > 0; --length) {
        const char32_t c = alphabet[pick(random)];
        if (c > 0xFFFF)
            text += QString::fromUcs4(&c, 1);
        else
            text += QChar(static_cast<char16_t>(c));
    }
    return text;
}

TEST(Graphemes, AgreesWithIcuOnAnyText) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    std::mt19937 random(7);
    for (int round = 0; round < 20'000; ++round) {
        const QString text = randomText(random);
        const icu::UnicodeString input(QStringView(text).utf16(), static_cast<int32_t>(text.size()));
        iterator->setText(input);
        qsizetype boundaries = 0;
        for (int32_t i = 0; i <= input.length(); ++i) {
            const bool isBoundary = iterator->isBoundary(i);
            boundaries += isBoundary ? 1 : 0;
            ASSERT_EQ(Graphemes::isBoundary(text, i), isBoundary) << text.toStdString() << " at " << i;
            if (i < input.length()) {
                ASSERT_EQ(Graphemes::next(text, i), iterator->following(i));
            }
            if (i > 0 && input.getChar32Start(i) == i) {
                ASSERT_EQ(Graphemes::previous(text, i), iterator->preceding(i));
            }
        }
        ASSERT_EQ(Graphemes::count(text), boundaries - 1);
    }
}

TEST(Graphemes, SeparatesAnyTwoPlainUnitsAsIcuDoes) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> iterator(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    for (const char16_t other : {u'a', u'é', u'か', u'東', u'\n', u'\u0301', u'\u0600', u'\u200D'}) {
        for (char16_t c = 0; c < 0xD800; ++c) {
            for (const QString& text :
                 {QString(QChar(c)).append(QChar(other)), QString(QChar(other)).append(QChar(c))}) {
                iterator->setText(icu::UnicodeString(QStringView(text).utf16(), 2));
                ASSERT_EQ(Graphemes::isBoundary(text, 1), iterator->isBoundary(1)) << std::hex << int{c};
            }
        }
    }
}

} // namespace
} // namespace velorin

#include "cleanup/Tables.h"

#include "text/Pattern.h"

#include <QList>

#include <gtest/gtest.h>

namespace velorin {
namespace {

template <std::size_t size>
void expectValid(const std::array<Tables::Substitution, size>& table) {
    for (const auto& [pattern, written] : table)
        EXPECT_TRUE(Pattern(pattern).isValid()) << pattern.toString().toStdString();
}

TEST(Tables, PatternsCompile) {
    expectValid(Tables::layoutCommands);
    expectValid(Tables::typesetFlags);
    expectValid(Tables::fillers);
    expectValid(Tables::punctuationSpacing);
    expectValid(Tables::codeSpacing);
    expectValid(Tables::lineSpacing);
    for (const QStringView pattern :
         {Tables::finalPeriod.spoken, Tables::correctionCues, Tables::determinerWords, Tables::spokenAddress,
          Tables::spokenLongFlag, Tables::spokenSeparator})
        EXPECT_TRUE(Pattern(pattern).isValid()) << pattern.toString().toStdString();
}

TEST(Tables, WordsAreLookedUpExactly) {
    EXPECT_TRUE(Tables::contains(Tables::commandNames, u"kubectl"));
    EXPECT_FALSE(Tables::contains(Tables::commandNames, u"Kubectl"));
    EXPECT_FALSE(Tables::contains(Tables::functionWords, u""));
}

TEST(Tables, NoPhraseOfASymbolBeginsWithTheEndOfAnother) {
    // One walk that prefers the longer phrase stands for a pass a phrase, longest first: this is why it may.
    for (const auto& [phrase, symbol] : Tables::codeSymbols) {
        const auto words = phrase.split(u' ');
        for (const auto& [other, otherSymbol] : Tables::codeSymbols) {
            const auto otherWords = other.split(u' ');
            for (qsizetype overlap = 1; overlap < std::min(words.size(), otherWords.size()); ++overlap)
                EXPECT_NE(words.last(overlap), otherWords.first(overlap))
                    << phrase.toString().toStdString() << " / " << other.toString().toStdString();
        }
    }
}

} // namespace
} // namespace velorin

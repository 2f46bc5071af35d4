#include "agreement/Agreement.h"
#include "agreement/Vocabulary.h"

#include <gtest/gtest.h>

namespace velorin::agreement {
namespace {

// A hundredth of what the proof goes through, spread over the whole of it.

constexpr std::size_t share = 100;

TEST(Agreement, HoldsForPairsOfTheVocabulary) {
    const auto& pieces = vocabulary();
    const std::size_t size = pieces.size();
    for (std::size_t i = 0; i < size * size; i += 11) {
        const QString text = QString(pieces[i / size]).append(pieces[i % size]);
        const auto difference =
            differenceInClean({text, allContextProfiles[i % allContextProfiles.size()], {}});
        ASSERT_FALSE(difference) << difference->toStdString();
    }
}

TEST(Agreement, HoldsForTriplesOfTheVocabulary) {
    const auto& pieces = vocabulary();
    const std::size_t size = pieces.size();
    for (std::size_t i = 0; i < size * size * size; i += share + 1) {
        const QString text =
            QString(pieces[i / size / size]).append(pieces[i / size % size]).append(pieces[i % size]);
        const auto difference =
            differenceInClean({text, allContextProfiles[i % allContextProfiles.size()], {}});
        ASSERT_FALSE(difference) << difference->toStdString();
    }
}

/// In portions, which can run side by side.
class RandomTexts : public testing::TestWithParam<std::size_t> {};

constexpr std::size_t portions = 8;

TEST_P(RandomTexts, AreCleanedAsByTheReference) {
    for (std::size_t seed = GetParam(); seed < 10'000'000 / share; seed += portions) {
        std::mt19937_64 random(seed);
        const auto difference = differenceInClean(randomInput(random));
        ASSERT_FALSE(difference) << difference->toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Agreement, RandomTexts, testing::Range(std::size_t{0}, portions));

TEST(Agreement, HoldsForEachStageByItself) {
    for (std::size_t seed = 0; seed < 10'000; ++seed) {
        std::mt19937_64 random(seed);
        const auto difference = differenceInStages(randomInput(random));
        ASSERT_FALSE(difference) << difference->toStdString();
    }
}

} // namespace
} // namespace velorin::agreement

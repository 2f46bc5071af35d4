#include "RandomShortcuts.h"
#include "ReferenceMatcher.h"
#include "shortcuts/ShortcutMatcher.h"

#include <gmock/gmock.h>

#include <map>

namespace velorin {
namespace {

using testing::ElementsAreArray;
using Decision = ShortcutMatcher::ConsumeDecision;

std::set<int> asSet(const KeyCodeSet& codes) { return {codes.begin(), codes.end()}; }

std::set<int> swallowed(const ShortcutMatcher& matcher) {
    auto all = asSet(matcher.consumedKeyCodes);
    all.insert(matcher.consumedModifierKeyCodes.begin(), matcher.consumedModifierKeyCodes.end());
    return all;
}

void expectSameState(const ShortcutMatcher& matcher, const ReferenceMatcher& reference) {
    EXPECT_EQ(asSet(matcher.state.pressedKeyCodes), reference.keys);
    EXPECT_EQ(asSet(matcher.state.pressedModifierKeyCodes), reference.modifiers);
    EXPECT_EQ(swallowed(matcher), reference.swallowed);
    EXPECT_THAT(reference.levels, testing::ElementsAre(matcher.holdIsActive, matcher.toggleIsActive,
                                                       matcher.copyAgainIsActive));
}

/// What a run met, so that a test which met nothing cannot pass.
struct Met {
    std::map<ShortcutEvent, int> edges;
    int swallowed = 0;
};

void runOne(RandomShortcuts& random, Met& met) {
    auto configuration = random.configuration();
    ShortcutMatcher matcher{.configuration = configuration};
    ReferenceMatcher reference(configuration);
    for (int step = 0; step < 60; ++step) {
        if (random.oneIn(40)) {
            if (random.oneIn(2))
                configuration = random.configuration();
            matcher.update(configuration);
            reference.update(configuration);
        }
        const auto event = random.event();
        std::vector<ShortcutEvent> edges;
        const bool swallows = reference.swallows(event, edges);
        ASSERT_EQ(matcher.apply(event) == Decision::consume, swallows);
        ASSERT_THAT(matcher.takePendingEvents(), ElementsAreArray(edges));
        expectSameState(matcher, reference);
        met.swallowed += swallows ? 1 : 0;
        for (const auto edge : edges)
            ++met.edges[edge];
    }
}

TEST(ShortcutMatcherDifferential, AnswersLikeTheReferenceOnRandomKeystrokes) {
    Met met;
    for (unsigned seed = 0; seed < 2000 && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomShortcuts random(seed);
        runOne(random, met);
    }
    EXPECT_GT(met.swallowed, 5000);
    for (const auto event : allShortcutEvents)
        EXPECT_GT(met.edges[event], 500) << name(event).toStdString();
}

} // namespace
} // namespace velorin

#include "agreement/Agreement.h"
#include "agreement/HostileTexts.h"
#include "cleanup/RuleCleaner.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

// The address sanitizer's own; its header comes with another compiler.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*, std::size_t),
                                                         void (*onFree)(const volatile void*));

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

std::atomic<int> allocations = 0;

int allocationsOf(const QString& raw, ContextProfile profile) {
    static const int hooks = __sanitizer_install_malloc_and_free_hooks(
        [](const volatile void*, std::size_t) { ++allocations; }, [](const volatile void*) {});
    EXPECT_GT(hooks, 0);
    const QString expected = RuleCleaner::clean(raw, {}, profile); // what is made on first use is made now
    const int before = allocations;
    const QString text = RuleCleaner::clean(raw, {}, profile);
    const int after = allocations;
    EXPECT_EQ(text, expected);
    return after - before;
}

TEST(CleanCost, IsAFewAllocationsWhereOnlyWhiteSpaceChanges) {
    const QString raw =
        u" Nothing   here changes,\n\nnot one  word of it, which is as it should be. "_s.repeated(50);
    for (const ContextProfile profile : allContextProfiles)
        EXPECT_LE(allocationsOf(raw, profile), 5);
}

/// A deadline that only what grows with the square of the length can miss, sanitizers and all.
TEST(CleanCost, StaysBoundedForHostileTexts) {
    for (const auto& [name, text] : agreement::hostileTexts(100'000)) {
        for (const ContextProfile profile : {ContextProfile::generic, ContextProfile::code}) {
            const auto start = std::chrono::steady_clock::now();
            EXPECT_LE(RuleCleaner::clean(text, {}, profile).size(), text.size() * 2);
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2))
                << name.toStdString();
        }
    }
}

TEST(CleanCost, HostileTextsAreCleanedAsByTheReference) {
    for (const auto& [name, text] : agreement::hostileTexts(1'000)) {
        for (const ContextProfile profile : allContextProfiles) {
            const auto difference = agreement::differenceInClean({text, profile, {}});
            EXPECT_FALSE(difference) << name.toStdString() << ": " << difference->toStdString();
        }
    }
}

TEST(CleanCost, TakesTenMegabytes) {
    const QString sentence = u"I said um no wait, the new line is at main dot rs, sorry, at lib dot rs. "_s;
    const QString raw = sentence.repeated(10'000'000 / 2 / sentence.size());
    EXPECT_LE(RuleCleaner::clean(raw, {}, ContextProfile::generic).size(), raw.size());
    EXPECT_LE(RuleCleaner::clean(raw, {}, ContextProfile::code).size(), raw.size());
}

TEST(CleanCost, TakesAThousandReplacements) {
    QList<WordReplacement> replacements;
    for (int i = 0; i < 1000; ++i)
        replacements.append({QUuid(), u"word %1"_s.arg(i), u"%1 word %1"_s.arg(i)});
    QString raw;
    QString expected;
    for (int i = 0; i < 1000; ++i) {
        raw += u"say word %1 "_s.arg(i);
        expected += u"say %1 word %1 "_s.arg(i);
    }
    EXPECT_EQ(RuleCleaner::applyReplacements(raw, replacements), expected);
}

} // namespace
} // namespace velorin

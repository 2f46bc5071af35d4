#include "delivery/PasteService.h"

#include "tests/support/FakeClock.h"
#include "tests/support/FakePasteboard.h"
#include "tests/support/FakeSyntheticKeyboard.h"
#include "tests/support/FakeTrust.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using testing::IsEmpty;
using testing::SizeIs;

namespace velorin {
namespace {

const PasteboardContents userContent{{"UTF8_STRING", "UTF8_STRING", 8, "the user's"}};

RunningApplication applicationOf(qint64 process) {
    RunningApplication application;
    application.processIdentifier = process;
    return application;
}

class PasteServiceTest : public testing::Test {
protected:
    PasteServiceTest() {
        pasteboard.saved = userContent;
        pasteboard.written = pasteboard.count = 7;
        paste.onUnverifiedPaste = [this](const QString&) { ++unverified; };
    }

    void targetReads() { pasteboard.fetched.push_back({target->processIdentifier, false}); }

    const std::optional<RunningApplication> target = applicationOf(42);
    FakePasteboard pasteboard;
    FakeSyntheticKeyboard keyboard;
    FakeTrust trust;
    FakeClock clock;
    PasteService paste{pasteboard, keyboard, trust, clock};
    int unverified = 0;
};

TEST_F(PasteServiceTest, SavesWritesAndPastesInThatOrder) {
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    EXPECT_EQ(pasteboard.calls, QStringList({u"save clipboard"_s, u"write clipboard"_s}));
    EXPECT_THAT(pasteboard.texts, testing::ElementsAre(u"hello"_s));
    ASSERT_THAT(keyboard.chords, SizeIs(1));
    EXPECT_EQ(keyboard.chords[0], std::pair(Chord::paste, target));
}

TEST_F(PasteServiceTest, TouchesNothingForAnEmptyText) {
    EXPECT_FALSE(paste.insert(QString(), target));
    EXPECT_THAT(pasteboard.calls, IsEmpty());
}

TEST_F(PasteServiceTest, TouchesNothingWithoutPermission) {
    trust.processTrusted = false;
    EXPECT_FALSE(paste.insert(u"hello"_s, target));
    EXPECT_THAT(pasteboard.calls, IsEmpty());
    EXPECT_THAT(keyboard.chords, IsEmpty());
}

TEST_F(PasteServiceTest, LeavesAClipboardAloneThatCannotBeSaved) {
    pasteboard.saved.reset();
    EXPECT_FALSE(paste.insert(u"hello"_s, target));
    EXPECT_EQ(pasteboard.calls, QStringList({u"save clipboard"_s}));
    EXPECT_THAT(keyboard.chords, IsEmpty());
}

TEST_F(PasteServiceTest, PostsNothingWhenTheClipboardCannotBeHad) {
    pasteboard.written.reset();
    EXPECT_FALSE(paste.insert(u"hello"_s, target));
    EXPECT_THAT(keyboard.chords, IsEmpty());
    EXPECT_EQ(clock.waiting(), 0u);
}

TEST_F(PasteServiceTest, LeavesTheTextToBePastedByHandWhenTheKeystrokeFails) {
    keyboard.canPost = false;
    EXPECT_FALSE(paste.insert(u"hello"_s, target));
    clock.advance(10s);
    EXPECT_THAT(pasteboard.restored, IsEmpty());
    EXPECT_EQ(unverified, 0);
}

TEST_F(PasteServiceTest, GivesTheContentBackAfterTheDelay) {
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    targetReads();
    clock.advance(599ms);
    EXPECT_THAT(pasteboard.restored, IsEmpty());
    clock.advance(1ms);
    ASSERT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(pasteboard.restored[0].contents, userContent);
    EXPECT_EQ(pasteboard.restored[0].expected, 7u);
    EXPECT_EQ(clock.waiting(), 0u);
    EXPECT_EQ(unverified, 0);
}

TEST_F(PasteServiceTest, WhatItsOwnerMarkedSecretDoesNotStayForGood) {
    pasteboard.saved = PasteboardContents{{"UTF8_STRING", "UTF8_STRING", 8, "hunter2"},
                                          {passwordHintType, passwordHintType, 8, "secret"}};
    ASSERT_TRUE(paste.insert(u"hello"_s, target));
    targetReads();
    clock.advance(1s);
    ASSERT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(pasteboard.restored[0].contents, *pasteboard.saved) << "the mark comes back with it";
    clock.advance(PasteService::secretLife);
    ASSERT_THAT(pasteboard.restored, SizeIs(2));
    EXPECT_TRUE(pasteboard.restored[1].contents.empty());
    EXPECT_EQ(pasteboard.restored[1].expected, pasteboard.count) << "somebody's newer content would stay";
}

TEST_F(PasteServiceTest, WhatIsNoSecretStays) {
    ASSERT_TRUE(paste.insert(u"hello"_s, target));
    targetReads();
    clock.advance(PasteService::secretLife * 2);
    EXPECT_THAT(pasteboard.restored, SizeIs(1));
}

TEST_F(PasteServiceTest, WaitsForASlowTargetAndUntilItHasReadTwice) {
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    clock.advance(2950ms);
    targetReads();
    clock.advance(50ms);
    EXPECT_THAT(pasteboard.restored, IsEmpty()) << "it may read once more";
    targetReads();
    clock.advance(100ms);
    EXPECT_THAT(pasteboard.restored, IsEmpty());
    clock.advance(100ms);
    EXPECT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(unverified, 0);
}

TEST_F(PasteServiceTest, WaitsUntilAPageReadsNoMore) {
    auto browser = *target;
    browser.kin = u"com.google.Chrome.beta"_s;
    EXPECT_TRUE(paste.insert(u"hello"_s, browser));
    targetReads();
    clock.advance(1900ms);
    EXPECT_THAT(pasteboard.restored, IsEmpty()) << "its own work keeps it from reading once more";
    targetReads();
    clock.advance(500ms);
    pasteboard.fetched.push_back({7, false}); // a stranger, who does not matter
    clock.advance(500ms);
    EXPECT_THAT(pasteboard.restored, IsEmpty());
    clock.advance(100ms);
    EXPECT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(unverified, 0);
}

TEST_F(PasteServiceTest, KeepsThePagesBrowserAwakeUntilTheContentHasComeBack) {
    auto browser = *target;
    browser.kin = u"com.google.Chrome"_s;
    EXPECT_TRUE(paste.insert(u"hello"_s, browser));
    clock.advance(120ms);
    EXPECT_EQ(pasteboard.calls.count(u"stir clipboard"_s), 3);
    targetReads();
    targetReads();
    clock.advance(2000ms);
    EXPECT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(pasteboard.calls.last(), u"restore clipboard"_s);
    EXPECT_EQ(clock.waiting(), 0u);
}

TEST_F(PasteServiceTest, LeavesProgramsAloneThatReadInOneGo) {
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    clock.advance(600ms);
    EXPECT_EQ(pasteboard.calls.count(u"stir clipboard"_s), 0);
}

TEST_F(PasteServiceTest, ReadingOnceIsEnoughForSomeFieldsOfABrowser) {
    auto browser = *target;
    browser.kin = u"com.google.Chrome"_s;
    EXPECT_TRUE(paste.insert(u"hello"_s, browser));
    targetReads();
    clock.advance(2500ms);
    EXPECT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(unverified, 0);
}

TEST_F(PasteServiceTest, APageThatHasReadOnlyOnceIsWaitedForBeforeTheNextText) {
    auto browser = *target;
    browser.kin = u"com.google.Chrome"_s;
    EXPECT_TRUE(paste.insert(u"one"_s, browser));
    targetReads();
    pasteboard.onAwaitFetch = [this] {
        targetReads();
        return true;
    };
    EXPECT_TRUE(paste.insert(u"two"_s, browser));
    EXPECT_EQ(pasteboard.calls.count(u"awaitFetch clipboard"_s), 1);
}

TEST_F(PasteServiceTest, WhoeverKeepsReadingDoesNotKeepTheClipboard) {
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    for (int i = 0; i < 100; ++i) {
        targetReads();
        clock.advance(100ms);
    }
    EXPECT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(unverified, 0);
}

TEST_F(PasteServiceTest, TellsWhenNobodyReadTheText) {
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    clock.advance(4999ms);
    EXPECT_THAT(pasteboard.restored, IsEmpty());
    EXPECT_EQ(unverified, 0);
    clock.advance(1ms);
    EXPECT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(unverified, 1);
    EXPECT_EQ(clock.waiting(), 0u);
}

TEST_F(PasteServiceTest, DoesNotCountAClipboardManagerOrAStranger) {
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    pasteboard.fetched = {{0, true}, {99, false}};
    clock.advance(5s);
    EXPECT_EQ(unverified, 1);
}

TEST_F(PasteServiceTest, CountsAnybodyButAManagerWhereProcessesCannotBeTold) {
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    pasteboard.fetched = {{0, false}};
    clock.advance(600ms);
    EXPECT_THAT(pasteboard.restored, SizeIs(1));
}

TEST_F(PasteServiceTest, CountsAnybodyButAManagerForAnUnknownTarget) {
    EXPECT_TRUE(paste.insert(u"hello"_s, std::nullopt));
    pasteboard.fetched = {{99, false}};
    clock.advance(600ms);
    EXPECT_THAT(pasteboard.restored, SizeIs(1));
}

TEST_F(PasteServiceTest, LeavesTheTextOnAClipboardThatWasEmpty) {
    pasteboard.saved = PasteboardContents{};
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    targetReads();
    clock.advance(10s);
    EXPECT_THAT(pasteboard.restored, IsEmpty());
    EXPECT_EQ(unverified, 0);
}

TEST_F(PasteServiceTest, StopsWatchingWhenTheUserCopiesSomething) {
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    targetReads();
    pasteboard.count = 8;
    clock.advance(600ms);
    for (const auto& restored : pasteboard.restored)
        EXPECT_NE(restored.expected, pasteboard.count);
    EXPECT_EQ(clock.waiting(), 0u);
    EXPECT_EQ(unverified, 0);
}

TEST_F(PasteServiceTest, KeepsWhatTheFirstOfTwoQuickPastesSaved) {
    EXPECT_TRUE(paste.insert(u"one"_s, target));
    targetReads();
    clock.advance(300ms);
    pasteboard.saved = PasteboardContents{{"UTF8_STRING", "UTF8_STRING", 8, "one"}};
    EXPECT_TRUE(paste.insert(u"two"_s, target));
    EXPECT_EQ(pasteboard.calls.count(u"save clipboard"_s), 1);
    clock.advance(599ms);
    EXPECT_THAT(pasteboard.restored, IsEmpty());
    clock.advance(1ms);
    ASSERT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(pasteboard.restored[0].contents, userContent);
}

TEST_F(PasteServiceTest, SavesAnewWhenTheUserCopiedBetweenTwoPastes) {
    EXPECT_TRUE(paste.insert(u"one"_s, target));
    targetReads();
    clock.advance(300ms);
    pasteboard.count = 8;
    pasteboard.saved = PasteboardContents{{"UTF8_STRING", "UTF8_STRING", 8, "newer"}};
    pasteboard.written = pasteboard.count = 9;
    EXPECT_TRUE(paste.insert(u"two"_s, target));
    EXPECT_EQ(pasteboard.calls.count(u"save clipboard"_s), 2);
    clock.advance(600ms);
    ASSERT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(pasteboard.restored[0].contents, *pasteboard.saved);
}

TEST_F(PasteServiceTest, WaitsUntilTheTargetHasReadTheEarlierText) {
    EXPECT_TRUE(paste.insert(u"one"_s, target));
    pasteboard.onAwaitFetch = [this] {
        targetReads();
        return true;
    };
    EXPECT_TRUE(paste.insert(u"two"_s, target));
    EXPECT_EQ(pasteboard.calls.count(u"awaitFetch clipboard"_s), 1);
}

TEST_F(PasteServiceTest, DeclinesWhileTheEarlierTextIsStillUnread) {
    EXPECT_TRUE(paste.insert(u"one"_s, target));
    EXPECT_FALSE(paste.insert(u"two"_s, target));
    EXPECT_THAT(pasteboard.texts, SizeIs(1));
    targetReads();
    clock.advance(600ms);
    EXPECT_THAT(pasteboard.restored, SizeIs(1)) << "the first paste goes its way";
}

TEST_F(PasteServiceTest, UsesTheSelectionThatTheApplicationReads) {
    keyboard.source = PasteboardSelection::primary;
    EXPECT_TRUE(paste.insert(u"hello"_s, target));
    EXPECT_EQ(pasteboard.calls, QStringList({u"save primary"_s, u"write primary"_s}));
}

TEST_F(PasteServiceTest, GivesTheContentBackAtOnceWhenItEnds) {
    {
        PasteService shortLived(pasteboard, keyboard, trust, clock);
        EXPECT_TRUE(shortLived.insert(u"hello"_s, target));
    }
    EXPECT_THAT(pasteboard.restored, SizeIs(1));
    EXPECT_EQ(clock.waiting(), 0u);
}

} // namespace
} // namespace velorin

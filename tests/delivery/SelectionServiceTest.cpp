#include "delivery/SelectionService.h"

#include "platform/Log.h"
#include "tests/support/FakeAccessibility.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakePasteboard.h"
#include "tests/support/FakeSyntheticKeyboard.h"
#include "tests/support/FakeTrust.h"
#include "tests/support/FakeWorkspace.h"
#include "tests/support/LogCapture.h"
#include "tests/support/WaitUntil.h"

#include <QCoro/QCoroTask>

#include <gmock/gmock.h>

#include <atomic>
#include <semaphore>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace velorin {
namespace {

RunningApplication application(qint64 process, const QString& kin) {
    RunningApplication made;
    made.processIdentifier = process;
    made.bundleIdentifier = made.kin = kin;
    return made;
}

std::chrono::steady_clock::time_point soon() { return std::chrono::steady_clock::now() + 10s; }

/// Holds a thread up where a test wants it to be slow.
class Obstacle final {
public:
    void meet() {
        isMet_ = true;
        way_.acquire();
    }
    [[nodiscard]] bool awaitMeeting() {
        return waitUntil([this] { return isMet_.load(); });
    }
    void remove() { way_.release(); }

private:
    std::atomic<bool> isMet_ = false;
    std::binary_semaphore way_{0};
};

/// A keyboard whose copy chord puts something on the pasteboard, as applications do.
class CopyingKeyboard final : public SyntheticKeyboard {
public:
    explicit CopyingKeyboard(FakePasteboard& pasteboard) : pasteboard_(pasteboard) {}

    bool copies = true;
    int chords = 0;

    bool chord(Chord, const std::optional<RunningApplication>&) override {
        ++chords;
        if (copies)
            ++pasteboard_.count;
        return true;
    }
    std::optional<qsizetype> type(const QStringList&, const std::optional<RunningApplication>&) override {
        return std::nullopt;
    }
    PasteboardSelection pasteSource(const std::optional<RunningApplication>&) const override {
        return PasteboardSelection::clipboard;
    }

private:
    FakePasteboard& pasteboard_;
};

class SelectionServiceTest : public testing::Test {
protected:
    SelectionServiceTest() {
        QLoggingCategory::setFilterRules(u"*.debug=true"_s);
        accessibility.focused = std::make_shared<FakeElement>();
        workspace.frontmost = browser;
        pasteboard.saved = PasteboardContents{{"UTF8_STRING", "UTF8_STRING", 8, "the user's"}};
    }
    ~SelectionServiceTest() override { QLoggingCategory::setFilterRules({}); }

    FakeElement::State& focus() { return *accessibility.focused->state; }
    std::shared_ptr<FakeElement> addChild(FakeElement::State& parent, const QString& selected) {
        auto child = std::make_shared<FakeElement>();
        child->state->selectedText = selected;
        parent.children.push_back(child);
        return child;
    }
    std::optional<SelectionSnapshot> snapshot(std::optional<RunningApplication> app) {
        return QCoro::waitFor(service.snapshot(std::move(app)));
    }
    bool isStillSelected(const SelectionSnapshot& taken) {
        return QCoro::waitFor(service.isStillSelected(taken));
    }

    void holdUp(const QString& call) {
        pasteboard.onCall = [this, call](const QString& made) {
            if (made == call)
                obstacle.meet();
        };
    }

    Obstacle obstacle;
    const RunningApplication browser = application(7, u"org.mozilla.firefox"_s);
    const RunningApplication editor = application(7, u"com.apple.TextEdit"_s);
    FakeAccessibility accessibility;
    FakeWorkspace workspace;
    FakePasteboard pasteboard;
    CopyingKeyboard keyboard{pasteboard};
    FakeTrust trust;
    FakeClock clock;
    PasteService paste{pasteboard, keyboard, trust, clock};
    SelectionService service{accessibility, workspace, paste, trust, clock};
    LogCapture log;
};

TEST_F(SelectionServiceTest, TakesTheSelectionOfTheFocusedElement) {
    focus().selectedText = u"chosen"_s;
    const auto taken = snapshot(browser);
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->text, u"chosen"_s);
    EXPECT_EQ(taken->source, SelectionSource::accessibility);
    EXPECT_EQ(taken->element, taken->focus);
    EXPECT_EQ(taken->appPID, 7);
    EXPECT_EQ(snapshot(std::nullopt)->appPID, std::nullopt);
    EXPECT_EQ(keyboard.chords, 0);
}

TEST_F(SelectionServiceTest, TakesItFromTheRangeWhereTheTextOfItIsNotTold) {
    focus().value = u"one two three"_s;
    focus().range = TextRange{4, 3};
    EXPECT_EQ(snapshot(editor)->text, u"two"_s);
    for (const TextRange range : {TextRange{4, 0}, TextRange{-1, 3}, TextRange{4, 10}, TextRange{99, 1}}) {
        focus().range = range;
        EXPECT_EQ(snapshot(editor), std::nullopt);
    }
}

TEST_F(SelectionServiceTest, LooksThroughTheTreeInItsOrder) {
    const auto first = addChild(focus(), {});
    const auto inner = addChild(*first->state, u"inner"_s);
    addChild(focus(), u"second"_s);
    const auto taken = snapshot(editor);
    EXPECT_EQ(taken->text, u"inner"_s);
    EXPECT_TRUE(taken->element->isSameAs(*inner));
    EXPECT_TRUE(taken->focus->isSameAs(*accessibility.focused));
    EXPECT_THAT(log.lines(), ElementsAre(u"selection: selection: found on descendant role=text"_s));
}

TEST_F(SelectionServiceTest, LooksNoDeeperThanLevelSeven) {
    auto* parent = &focus();
    std::vector<std::shared_ptr<FakeElement>> kept;
    for (int level = 0; level <= 7; ++level) {
        kept.push_back(addChild(*parent, {}));
        parent = kept.back()->state.get();
    }
    parent->selectedText = u"level seven"_s;
    EXPECT_EQ(snapshot(editor)->text, u"level seven"_s);
    parent->selectedText = QString();
    addChild(*parent, u"level eight"_s);
    EXPECT_EQ(snapshot(editor), std::nullopt);
}

TEST_F(SelectionServiceTest, DoesNotReadTheFiveHundredthChild) {
    for (int i = 0; i < 498; ++i)
        addChild(focus(), {});
    addChild(focus(), u"number 499"_s);
    EXPECT_EQ(snapshot(editor)->text, u"number 499"_s);
    focus().children.back()->state->selectedText = QString();
    const auto last = addChild(focus(), u"number 500"_s);
    EXPECT_EQ(snapshot(editor), std::nullopt);
    EXPECT_EQ(last->state->textsRead, 0);
}

TEST_F(SelectionServiceTest, PassesOverASecretFieldButNotWhatLiesBelowIt) {
    const auto secret = addChild(focus(), u"secret"_s);
    secret->state->role = QString::fromUtf16(secureTextFieldRole);
    addChild(*secret->state, u"below"_s);
    EXPECT_EQ(snapshot(editor)->text, u"below"_s);
    EXPECT_EQ(secret->state->textsRead, 0);
}

TEST_F(SelectionServiceTest, ReadsNothingOfAFocusedPasswordButStillTriesTheCopy) {
    focus().role = QString::fromUtf16(secureTextFieldRole);
    focus().selectedText = u"secret"_s;
    keyboard.copies = false;
    EXPECT_EQ(snapshot(browser), std::nullopt);
    EXPECT_EQ(focus().textsRead, 0);
    EXPECT_EQ(keyboard.chords, 1);
    EXPECT_EQ(service.contextText(), std::nullopt);
}

TEST_F(SelectionServiceTest, NeitherBlanksNorABookAreOfUse) {
    focus().selectedText = u" \n\t"_s;
    EXPECT_EQ(snapshot(editor), std::nullopt);
    focus().selectedText = QString(12001, u'x');
    EXPECT_EQ(snapshot(editor), std::nullopt);
    focus().selectedText = QString(12000, u'x');
    EXPECT_TRUE(snapshot(editor));
    focus().selectedText = QString();
    pasteboard.text = QString(12001, u'x');
    EXPECT_EQ(snapshot(browser), std::nullopt);
}

TEST_F(SelectionServiceTest, CopiesInApplicationsThatShowAccessibilityNothing) {
    pasteboard.text = u"copied"_s;
    const auto taken = snapshot(browser);
    EXPECT_EQ(taken->text, u"copied"_s);
    EXPECT_EQ(taken->source, SelectionSource::clipboard);
    EXPECT_EQ(taken->element, nullptr);
    EXPECT_EQ(taken->appPID, 7);
    ASSERT_EQ(pasteboard.restored.size(), 1U);
    EXPECT_EQ(pasteboard.restored.front().contents, *pasteboard.saved);
    EXPECT_THAT(log.lines(), ElementsAre(u"selection: selection: none via AX (role=text)"_s,
                                         u"selection: selection: copied from org.mozilla.firefox"_s));
    workspace.frontmost->kin = u"com.google.Chrome.beta"_s;
    EXPECT_TRUE(snapshot(workspace.frontmost));
}

TEST_F(SelectionServiceTest, CopiesNeitherInTerminalsNorInEditorsNorElsewhereNorInItself) {
    for (auto target : {application(7, u"com.apple.Terminal"_s), editor}) {
        workspace.frontmost = target;
        EXPECT_EQ(snapshot(target), std::nullopt);
    }
    workspace.frontmost = application(8, u"org.mozilla.firefox"_s);
    EXPECT_EQ(snapshot(browser), std::nullopt) << "another one is in front";
    workspace.frontmost = application(workspace.currentProcess, u"org.mozilla.firefox"_s);
    EXPECT_EQ(snapshot(workspace.frontmost), std::nullopt);
    workspace.frontmost.reset();
    EXPECT_EQ(snapshot(browser), std::nullopt);
    EXPECT_EQ(keyboard.chords, 0);
    EXPECT_THAT(pasteboard.calls, IsEmpty());
}

TEST_F(SelectionServiceTest, WithNothingSelectedTheClipboardIsNotTouched) {
    keyboard.copies = false;
    EXPECT_EQ(snapshot(browser), std::nullopt);
    EXPECT_THAT(pasteboard.restored, IsEmpty());
    EXPECT_EQ(log.lines().last(), u"selection: selection: none"_s);
}

TEST_F(SelectionServiceTest, WithoutPermissionThereIsNothing) {
    trust.processTrusted = false;
    focus().selectedText = u"chosen"_s;
    EXPECT_EQ(snapshot(browser), std::nullopt);
    EXPECT_EQ(service.contextText(), std::nullopt);
}

TEST_F(SelectionServiceTest, KnowsWhetherTheSelectionIsStillThere) {
    focus().selectedText = u"chosen"_s;
    const auto taken = *snapshot(editor);
    EXPECT_TRUE(isStillSelected(taken));
    focus().selectedText = u"other"_s;
    EXPECT_FALSE(isStillSelected(taken));
    focus().selectedText = QString();
    EXPECT_FALSE(isStillSelected(taken));
    accessibility.focused = std::make_shared<FakeElement>();
    EXPECT_FALSE(isStillSelected(taken)) << "something else has the keyboard";
    EXPECT_FALSE(isStillSelected({.text = u"chosen"_s}));
}

TEST_F(SelectionServiceTest, ADescendantThatTellsNothingMoreCountsAsStillSelected) {
    const auto child = addChild(focus(), u"chosen"_s);
    const auto taken = *snapshot(editor);
    child->state->selectedText = std::nullopt;
    child->state->value = std::nullopt;
    EXPECT_TRUE(isStillSelected(taken));
}

TEST_F(SelectionServiceTest, ACopiedSelectionIsCopiedOnceMore) {
    const SelectionSnapshot taken{.text = u"copied"_s, .source = SelectionSource::clipboard, .appPID = 7};
    pasteboard.text = u"copied \n"_s;
    EXPECT_TRUE(isStillSelected(taken));
    EXPECT_EQ(keyboard.chords, 1);
    EXPECT_EQ(pasteboard.restored.size(), 1U);
    pasteboard.text = u"other"_s;
    EXPECT_FALSE(isStillSelected(taken));
    workspace.frontmost->processIdentifier = 8;
    EXPECT_FALSE(isStillSelected(taken));
    EXPECT_EQ(keyboard.chords, 2);
}

TEST_F(SelectionServiceTest, GivesTheSelectionOrElseTheTextAsContext) {
    focus().value = QString(12001, u'v');
    EXPECT_EQ(service.contextText(), QString(12000, u'v'));
    focus().selectedText = u" chosen "_s;
    EXPECT_EQ(service.contextText(), u" chosen "_s);
    focus().selectedText = u" "_s;
    focus().value = u"\n"_s;
    EXPECT_EQ(service.contextText(), std::nullopt);
}

TEST_F(SelectionServiceTest, DoesNotWaitForAnApplicationThatTakesItsTime) {
    accessibility.onAsked = [this] { obstacle.meet(); };
    focus().selectedText = u"chosen, told late"_s;
    auto looking = service.snapshot(editor);
    EXPECT_TRUE(obstacle.awaitMeeting());
    clock.advance(SelectionService::budget);
    EXPECT_EQ(QCoro::waitFor(std::move(looking)), std::nullopt);
    obstacle.remove();
}

TEST_F(SelectionServiceTest, DoesNotWaitForAClipboardThatTakesItsTime) {
    {
        PasteService shortLived(pasteboard, keyboard, trust, clock);
        SelectionService own(accessibility, workspace, shortLived, trust, clock);
        holdUp(u"save clipboard"_s);
        auto looking = own.snapshot(browser);
        EXPECT_TRUE(obstacle.awaitMeeting());
        clock.advance(SelectionService::wholeBudget);
        EXPECT_EQ(QCoro::waitFor(std::move(looking)), std::nullopt);
        obstacle.remove();
    }
    EXPECT_EQ(keyboard.chords, 0) << "nobody wants it any more";
}

TEST_F(SelectionServiceTest, GivesWhatWasCopiedAlsoWhileTheClipboardIsSlowToComeBack) {
    pasteboard.text = u"copied"_s;
    {
        PasteService shortLived(pasteboard, keyboard, trust, clock);
        SelectionService own(accessibility, workspace, shortLived, trust, clock);
        holdUp(u"restore clipboard"_s);
        auto looking = own.snapshot(browser);
        EXPECT_TRUE(obstacle.awaitMeeting());
        clock.advance(SelectionService::wholeBudget);
        const auto taken = QCoro::waitFor(std::move(looking));
        ASSERT_TRUE(taken);
        EXPECT_EQ(taken->text, u"copied"_s);
        EXPECT_FALSE(shortLived.insert(u"dictated"_s, browser)) << "the clipboard is not its own again";
        obstacle.remove();
    }
    EXPECT_EQ(pasteboard.restored.size(), 1U);
}

TEST_F(SelectionServiceTest, PostsNoKeysWhenTheCopyWouldComeTooLate) {
    const auto end = std::chrono::steady_clock::now() + 150ms;
    EXPECT_EQ(QCoro::waitFor(paste.copySelection(browser, 150ms, end)), std::nullopt);
    EXPECT_EQ(keyboard.chords, 0);
    EXPECT_THAT(pasteboard.calls, IsEmpty());
}

TEST_F(SelectionServiceTest, ACopyWithoutTextIsUndoneAllTheSame) {
    pasteboard.text = std::nullopt;
    EXPECT_EQ(QCoro::waitFor(paste.copySelection(browser, 150ms, soon())), std::nullopt);
    EXPECT_EQ(pasteboard.restored.size(), 1U);
}

TEST_F(SelectionServiceTest, ACopyWithoutTimePostsItsKeysAndWaitsForNothing) {
    pasteboard.text = u"copied"_s;
    EXPECT_EQ(QCoro::waitFor(paste.copySelection(browser, 0ms, soon())), std::nullopt);
    EXPECT_EQ(keyboard.chords, 1);
    EXPECT_THAT(pasteboard.restored, IsEmpty());
}

TEST_F(SelectionServiceTest, ACopyWhileAPasteIsUnderWayGivesBackWhatThePasteHadSaved) {
    keyboard.copies = false;
    ASSERT_TRUE(paste.insert(u"dictated"_s, browser));
    const auto users = *pasteboard.saved;
    pasteboard.saved = PasteboardContents{{"UTF8_STRING", "UTF8_STRING", 8, "dictated"}};
    keyboard.copies = true;
    pasteboard.text = u"copied"_s;
    EXPECT_EQ(QCoro::waitFor(paste.copySelection(browser, 150ms, soon())), u"copied"_s);
    ASSERT_EQ(pasteboard.restored.size(), 1U);
    EXPECT_EQ(pasteboard.restored.front().contents, users);
}

} // namespace
} // namespace velorin

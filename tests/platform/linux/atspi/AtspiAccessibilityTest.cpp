#include "platform/linux/atspi/AtspiAccessibility.h"

#include "tests/platform/linux/atspi/support/AtspiService.h"
#include "tests/platform/linux/atspi/support/PrivateBus.h"
#include "tests/support/LogCapture.h"
#include "tests/support/WaitUntil.h"

#include <gmock/gmock.h>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr auto budget = 800ms;

class AtspiAccessibilityTest : public testing::Test {
protected:
    /// The element, once the accessibility thread has come to the bus.
    std::shared_ptr<AccessibleElement> focus() {
        std::shared_ptr<AccessibleElement> element;
        EXPECT_TRUE(waitUntil([&] {
            element = accessibility.focusedElement(getpid(), budget);
            return element != nullptr;
        }));
        return element;
    }

    void set(const std::function<void(AtspiService::State&)>& change) { service->change(change); }

    /// How long the question takes.
    template <typename Question>
    std::chrono::milliseconds timeOf(Question question) {
        const auto begin = std::chrono::steady_clock::now();
        question();
        return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                     begin);
    }

    LogCapture log;
    PrivateBus bus;
    std::unique_ptr<AtspiService> service = std::make_unique<AtspiService>(bus.address());
    AtspiAccessibility accessibility;
};

TEST_F(AtspiAccessibilityTest, FindsWhatHadTheKeyboardBeforeItCame) {
    set([](auto& s) { s.text = u"Hello 😀"_s; });
    const auto element = focus();
    ASSERT_TRUE(element);
    EXPECT_EQ(element->role(), u"text"_s);
    EXPECT_EQ(element->value(), u"Hello 😀"_s);
    EXPECT_EQ(element->selectedText(), QString());
    EXPECT_TRUE(element->isSelectedTextSettable());
    EXPECT_TRUE(service->state().isEnabled) << "and switched accessibility on";
    EXPECT_EQ(accessibility.focusedElement(getpid() + 1, budget), nullptr) << "of a stranger";
}

TEST_F(AtspiAccessibilityTest, DoesNotSearchThroughClosedMenus) {
    set([](auto& s) { s.closedItems = 5000; });
    EXPECT_TRUE(focus());
}

TEST_F(AtspiAccessibilityTest, FindsAFieldThatIsTheWindowItself) {
    set([](auto& s) { s.isWindow = true, s.text = u"Hello"_s; });
    EXPECT_EQ(focus()->value(), u"Hello"_s);
}

TEST_F(AtspiAccessibilityTest, FollowsTheFocusByItsEvents) {
    ASSERT_TRUE(focus());
    service->tellFocus(false);
    EXPECT_EQ(accessibility.focusedElement(getpid(), budget), nullptr);
    service->tellFocus(true);
    EXPECT_TRUE(focus());
}

TEST_F(AtspiAccessibilityTest, InsertsAtTheCaretAndPutsItBehind) {
    set([](auto& s) { s.text = u"😀ab"_s, s.caret = s.start = s.end = 2; });
    EXPECT_TRUE(focus()->replaceSelection(u"ä–漢"_s));
    EXPECT_EQ(service->state().text, u"😀aä–漢b"_s);
    EXPECT_EQ(service->state().caret, 5);
}

TEST_F(AtspiAccessibilityTest, ReplacesTheSelection) {
    set([](auto& s) { s.text = u"one two"_s, s.caret = s.end = 7, s.start = 4; });
    const auto element = focus();
    EXPECT_EQ(element->selectedText(), u"two"_s);
    EXPECT_EQ(element->selectedTextRange(), (TextRange{4, 3}));
    EXPECT_TRUE(element->replaceSelection(u"👍 three"_s));
    EXPECT_EQ(service->state().text, u"one 👍 three"_s);
}

TEST_F(AtspiAccessibilityTest, CountsRangesInUnitsWhateverTheToolkitCountsIn) {
    set([](auto& s) { s.text = u"😀😀x"_s, s.start = 1, s.end = s.caret = 2; });
    EXPECT_EQ(focus()->selectedTextRange(), (TextRange{2, 2}));
}

TEST_F(AtspiAccessibilityTest, DropsThePaddingOfAToolkitThatPads) {
    set([](auto& s) {
        s.toolkit = "Gecko", s.text = u"😀\ufeffa😀\ufeff."_s, s.start = 2, s.end = s.caret = 5;
    });
    const auto element = focus();
    EXPECT_EQ(element->value(), u"😀a😀."_s);
    EXPECT_EQ(element->selectedText(), u"a😀"_s);
    EXPECT_EQ(element->selectedTextRange(), (TextRange{2, 3}));
}

TEST_F(AtspiAccessibilityTest, KeepsABlankOfNoWidthThatIsNoPadding) {
    set([](auto& s) { s.text = u"a\ufeffb"_s; });
    EXPECT_EQ(focus()->value(), u"a\ufeffb"_s);
}

TEST_F(AtspiAccessibilityTest, SpeaksToAToolkitThatCountsUnits) {
    set([](auto& s) { s.toolkit = "Qt", s.text = u"😀ab"_s, s.caret = s.start = s.end = 3; });
    const auto element = focus();
    EXPECT_TRUE(element->replaceSelection(u"ä😀"_s));
    EXPECT_EQ(service->state().text, u"😀aä😀b"_s);
    EXPECT_EQ(service->state().caret, 6);
}

TEST_F(AtspiAccessibilityTest, NeverReadsAPassword) {
    set([](auto& s) { s.text = u"secret"_s, s.role = 40, s.start = 0, s.end = 6; });
    const auto element = focus();
    EXPECT_EQ(element->role(), QString::fromUtf16(secureTextFieldRole));
    EXPECT_EQ(element->value(), std::nullopt);
    EXPECT_EQ(element->selectedText(), std::nullopt);
    EXPECT_EQ(element->selectedTextRange(), std::nullopt);
    EXPECT_FALSE(element->isSelectedTextSettable());
    EXPECT_FALSE(service->state().calls.contains(u"GetText"_s));
}

TEST_F(AtspiAccessibilityTest, DeclinesWhatCannotBeWritten) {
    set([](auto& s) { s.isEditable = false; });
    EXPECT_FALSE(focus()->isSelectedTextSettable());
}

TEST_F(AtspiAccessibilityTest, KnowsAToolkitThatLies) {
    set([](auto& s) { s.toolkit = "Gecko"; });
    EXPECT_FALSE(focus()->isSelectedTextSettable());
}

TEST_F(AtspiAccessibilityTest, SeesThatAWriteWasDropped) {
    set([](auto& s) { s.lies = {"InsertText", "SetCaretOffset"}; });
    const auto written = focus()->replaceSelection(u"text"_s);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error(), AccessibilityError::dropped);
}

TEST_F(AtspiAccessibilityTest, TakesNoChangeForSuccessWhereTheTextIsTheSame) {
    set([](auto& s) { s.text = u"same"_s, s.end = 4, s.caret = 4, s.lies = {"InsertText", "DeleteText"}; });
    EXPECT_TRUE(focus()->replaceSelection(u"same"_s));
}

TEST_F(AtspiAccessibilityTest, TellsARefusal) {
    set([](auto& s) { s.refuses = {"InsertText"}; });
    const auto written = focus()->replaceSelection(u"text"_s);
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error(), AccessibilityError::refused);
}

TEST_F(AtspiAccessibilityTest, AHungApplicationCostsOneDeadline) {
    const auto element = focus();
    set([](auto& s) { s.silent = {"GetRole", "Get", "GetText", "GetState", "GetInterfaces"}; });
    const auto renewed = element->renewed(budget);
    EXPECT_LT(timeOf([&] {
                  EXPECT_EQ(renewed->value(), std::nullopt);
                  EXPECT_EQ(renewed->selectedText(), std::nullopt);
                  EXPECT_FALSE(renewed->isSelectedTextSettable());
                  EXPECT_FALSE(renewed->replaceSelection(u"text"_s));
              }),
              450ms);
    EXPECT_FALSE(service->state().calls.contains(u"InsertText"_s));
}

TEST_F(AtspiAccessibilityTest, ManySlowAnswersShareOneDeadline) {
    const auto element = focus();
    set([](auto& s) { s.delay = 80ms, s.text = u"slow"_s, s.end = 4; });
    const auto renewed = element->renewed(200ms);
    EXPECT_LT(timeOf([&] {
                  (void)renewed->role();
                  (void)renewed->value();
                  (void)renewed->selectedText();
                  (void)renewed->selectedTextRange();
                  (void)renewed->children();
              }),
              400ms)
        << "each by itself would need more than a second";
}

TEST_F(AtspiAccessibilityTest, BytesThatAreNoTextCostTheApplicationItsBusAndUsNothing) {
    set([](auto& s) { s.text = u"text"_s, s.end = 4; });
    const auto element = focus();
    set([](auto& s) { s.garbled = {"GetText"}; });
    EXPECT_EQ(element->renewed(budget)->selectedText(), std::nullopt);
    EXPECT_EQ(element->renewed(budget)->value(), std::nullopt);
    service = std::make_unique<AtspiService>(bus.address());
    EXPECT_TRUE(focus()) << "everybody else is still heard";
}

TEST_F(AtspiAccessibilityTest, AWriteWithoutAnAnswerCountsAsHandedOver) {
    set([](auto& s) { s.silent = {"InsertText"}; });
    EXPECT_TRUE(focus()->replaceSelection(u"text"_s));
}

TEST_F(AtspiAccessibilityTest, TakesNonsenseForNothing) {
    const auto element = focus();
    for (const auto* method : {"GetText", "Get", "GetRole", "GetNSelections", "GetInterfaces", "GetState",
                               "GetChildren", "GetSelection"}) {
        set([&](auto& s) {
            s.nonsense = {method};
            s.text = u"text"_s;
            s.start = 0;
            s.end = 2;
        });
        const auto again = element->renewed(budget);
        (void)again->value();
        (void)again->selectedText();
        (void)again->selectedTextRange();
        (void)again->children();
        (void)again->role();
        (void)again->isSelectedTextSettable();
        (void)accessibility.focusedElement(getpid(), budget);
    }
    set([](auto& s) { s.nonsense = {"Get"}; });
    EXPECT_EQ(element->renewed(budget)->value(), std::nullopt);
}

TEST_F(AtspiAccessibilityTest, TakesAnImpossiblePlaceForNothing) {
    set([](auto& s) { s.text = u"text"_s, s.start = 2, s.end = 400, s.caret = 2; });
    const auto element = focus();
    EXPECT_EQ(element->selectedText(), std::nullopt);
    EXPECT_FALSE(element->replaceSelection(u"a"_s));
    EXPECT_EQ(service->state().text, u"text"_s);
}

TEST_F(AtspiAccessibilityTest, FetchesNoTextOfMillions) {
    set([](auto& s) { s.text = QString(5'000'000, u'x'); });
    EXPECT_EQ(focus()->value(), std::nullopt);
    EXPECT_FALSE(service->state().calls.contains(u"GetText"_s));
}

TEST_F(AtspiAccessibilityTest, SurvivesATextThatIsLongerThanTold) {
    set([](auto& s) { s.text = u"short"_s, s.boast = 40'000'000; });
    const auto element = focus();
    ASSERT_TRUE(element);
    EXPECT_LT(timeOf([&] { EXPECT_EQ(element->renewed(budget)->value(), std::nullopt); }), 2 * budget);
    set([](auto& s) { s.boast = 0; });
    const auto again = focus(); // it may have to come to the bus anew
    ASSERT_TRUE(again);
    EXPECT_EQ(again->value(), u"short"_s);
}

TEST_F(AtspiAccessibilityTest, ComesBackToARestartedBus) {
    ASSERT_TRUE(focus());
    service.reset();
    EXPECT_EQ(accessibility.focusedElement(getpid(), budget), nullptr);
    service = std::make_unique<AtspiService>(bus.address());
    EXPECT_TRUE(focus());
}

TEST_F(AtspiAccessibilityTest, ABusThatDiesIsNoFocus) {
    ASSERT_TRUE(focus());
    bus.kill();
    EXPECT_TRUE(waitUntil([&] { return accessibility.focusedElement(getpid(), budget) == nullptr; }));
    EXPECT_LT(timeOf([&] { EXPECT_EQ(accessibility.focusedElement(getpid(), budget), nullptr); }), 100ms);
}

TEST(AtspiAccessibility, WithoutABusNothingHasTheKeyboard) {
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    unsetenv("XDG_RUNTIME_DIR");
    AtspiAccessibility accessibility;
    EXPECT_EQ(accessibility.focusedElement(0, budget), nullptr);
}

} // namespace
} // namespace velorin

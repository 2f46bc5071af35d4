// An application on the accessibility bus that answers what it likes. VELORIN_STRANGE_ANSWERS says how many
// strange answers there are to each question.
#include "platform/linux/atspi/AtspiAccessibility.h"
#include "platform/linux/x11/Deadline.h"

#include "tests/platform/linux/atspi/support/AtspiService.h"
#include "tests/platform/linux/atspi/support/PrivateBus.h"
#include "tests/support/LogCapture.h"
#include "tests/support/WaitUntil.h"

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr auto budget = 800ms;
/// What a loaded machine may add to a deadline.
constexpr auto slack = 200ms;

class HostilePeerTest : public testing::Test {
protected:
    std::shared_ptr<AccessibleElement> focus() {
        std::shared_ptr<AccessibleElement> element;
        EXPECT_TRUE(waitUntil([&] {
            element = accessibility.focusedElement(getpid(), budget);
            return element != nullptr;
        }));
        return element;
    }
    void set(const std::function<void(AtspiService::State&)>& change) { service.change(change); }

    /// Asks until there have been so many strange answers to the method. Gives how long the longest took.
    template <typename Question>
    std::chrono::milliseconds ask(const std::string& method, Question question) {
        std::chrono::milliseconds longest{0};
        const Deadline patience(90s);
        for (auto given = answers; given > 0 && !patience.hasPassed();
             given = answers - service.state().strangers[method]) {
            const auto begin = std::chrono::steady_clock::now();
            for (int i = 0; i < 10; ++i)
                question();
            const auto took = std::chrono::steady_clock::now() - begin;
            longest = std::max(longest, std::chrono::duration_cast<std::chrono::milliseconds>(took));
        }
        EXPECT_GE(service.state().strangers[method], answers) << method;
        return longest;
    }

    LogCapture log;
    PrivateBus bus;
    AtspiService service{bus.address()};
    AtspiAccessibility accessibility;
    int answers = qEnvironmentVariableIntValue("VELORIN_STRANGE_ANSWERS");
};

TEST_F(HostilePeerTest, ReferencesToNobodyArePassedOver) {
    set([](auto& s) {
        s.references = {{"", "/org/a11y/atspi/null"}, {"no name", "/field"},   {":1.1", "no path"}, {"", ""},
                        {"org..example", "/a/"},      {"\xc3\xa4.b", "/field"}};
        s.text = u"Hello"_s;
    });
    const auto element = focus();
    ASSERT_TRUE(element);
    EXPECT_EQ(element->value(), u"Hello"_s);
    EXPECT_TRUE(element->children().empty());
    EXPECT_TRUE(element->replaceSelection(u"text"_s));
}

TEST_F(HostilePeerTest, OfThousandsOfChildrenNotAllAreTaken) {
    set([](auto& s) { s.text = u"Hello"_s; });
    const auto element = focus();
    ASSERT_TRUE(element);
    set([](auto& s) { s.references.assign(50'000, {":1.1", "/field"}); });
    EXPECT_EQ(element->renewed(5s)->children().size(), 1000U);
}

TEST_F(HostilePeerTest, NobodyElsesNoteOfADeathIsBelieved) {
    ASSERT_TRUE(focus());
    service.tellDeath();
    const auto element = accessibility.focusedElement(getpid(), budget);
    ASSERT_TRUE(element);
    const auto calls = service.state().calls.count(u"GetChildren"_s);
    EXPECT_TRUE(accessibility.focusedElement(getpid(), budget));
    EXPECT_EQ(service.state().calls.count(u"GetChildren"_s), calls) << "it had to be looked for";
}

TEST_F(HostilePeerTest, AFloodOfEventsKeepsNobodyWaiting) {
    ASSERT_TRUE(focus());
    service.change([](auto& s) { s.floods = true; });
    for (int i = 0; i < 20; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        (void)accessibility.focusedElement(getpid(), budget);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, budget + slack);
    }
    service.change([](auto& s) { s.floods = false; });
    EXPECT_TRUE(focus());
}

TEST_F(HostilePeerTest, StrangeAnswersToAnyQuestionEndNothingAndKeepToTheDeadline) {
    if (answers == 0)
        answers = 300;
    const auto element = focus();
    ASSERT_TRUE(element);
    using Element = AccessibleElement;
    const std::vector<std::pair<std::string, std::function<void(Element&)>>> questions{
        {"GetRole", [](Element& e) { (void)e.role(); }},
        {"GetRoleName", [](Element& e) { (void)e.role(); }},
        {"Get", [](Element& e) { (void)e.value(); }},
        {"GetText", [](Element& e) { (void)e.value(); }},
        {"GetNSelections", [](Element& e) { (void)e.selectedText(); }},
        {"GetSelection", [](Element& e) { (void)e.selectedTextRange(); }},
        {"GetInterfaces", [](Element& e) { (void)e.isSelectedTextSettable(); }},
        {"GetState", [](Element& e) { (void)e.isSelectedTextSettable(); }},
        {"GetChildren",
         [](Element& e) {
             for (const auto& child : e.children())
                 (void)child->role();
         }},
        {"InsertText", [](Element& e) { (void)e.replaceSelection(u"text"_s); }},
        {"DeleteText", [](Element& e) { (void)e.replaceSelection(u"text"_s); }},
        {"SetCaretOffset", [](Element& e) { (void)e.replaceSelection(u"text"_s); }}};
    for (const auto& [method, question] : questions) {
        const auto longest = ask(method, [&] {
            set([&](auto& s) {
                s.strange = {method};
                s.text = u"some text"_s;
                s.start = 0;
                s.end = s.caret = 4;
                s.calls.clear();
            });
            const auto again = element->renewed(budget);
            question(*again);
        });
        // Ten at a time, of which one or two may have met with silence.
        EXPECT_LT(longest, 2 * budget + slack) << method;
    }
    set([](auto& s) { s.strange.clear(), s.text = u"some text"_s; });
    ASSERT_TRUE(focus()) << "and whoever answers properly is understood";
    EXPECT_EQ(focus()->value(), u"some text"_s);
}

} // namespace
} // namespace velorin

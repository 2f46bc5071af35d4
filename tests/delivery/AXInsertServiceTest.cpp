#include "delivery/AXInsertService.h"

#include "platform/Log.h"
#include "tests/support/FakeAccessibility.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeTrust.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace velorin {
namespace {

class AXInsertServiceTest : public testing::Test {
protected:
    AXInsertServiceTest() {
        QLoggingCategory::setFilterRules(u"*.debug=true"_s);
        accessibility.focused = std::make_shared<FakeElement>();
        insertion.onUnverifiedInsert = [this](const QString&) { ++unverified; };
    }
    ~AXInsertServiceTest() override { QLoggingCategory::setFilterRules({}); }

    FakeElement::State& element() { return *accessibility.focused->state; }

    FakeAccessibility accessibility;
    FakeTrust trust;
    FakeClock clock;
    AXInsertService insertion{accessibility, trust, clock};
    LogCapture log;
    int unverified = 0;
};

TEST_F(AXInsertServiceTest, WritesInThePlaceOfTheSelectionAndVerifiesLater) {
    element().value = u"before"_s;
    RunningApplication target;
    target.processIdentifier = 7;
    EXPECT_TRUE(insertion.insert(u"text"_s, target));
    EXPECT_THAT(element().written, ElementsAre(u"text"_s));
    EXPECT_THAT(accessibility.processes, ElementsAre(7));
    element().value = u"beforetext"_s;
    clock.advance(399ms);
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: ax insert: ok, committed (6 chars before)"_s));
    clock.advance(1ms);
    EXPECT_EQ(log.lines().last(), u"insert: ax insert: verified (6 -> 10 chars)"_s);
    EXPECT_EQ(unverified, 0);
}

TEST_F(AXInsertServiceTest, DeclinesAnEmptyTextInSilence) {
    EXPECT_FALSE(insertion.insert({}, std::nullopt));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(AXInsertServiceTest, DeclinesWithoutPermissionInSilence) {
    trust.processTrusted = false;
    EXPECT_FALSE(insertion.insert(u"a"_s, std::nullopt));
    EXPECT_THAT(accessibility.processes, IsEmpty());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(AXInsertServiceTest, DeclinesWhereNothingHasTheKeyboard) {
    accessibility.focused = nullptr;
    EXPECT_FALSE(insertion.insert(u"a"_s, std::nullopt));
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: ax insert: no focused element"_s));
}

TEST_F(AXInsertServiceTest, DeclinesAnElementWithoutText) {
    element().value = std::nullopt;
    EXPECT_FALSE(insertion.insert(u"a"_s, std::nullopt));
    EXPECT_THAT(element().written, IsEmpty());
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: ax insert: element exposes no readable AXValue"_s));
}

TEST_F(AXInsertServiceTest, TakesAValueOfAHundredThousandCharactersAndNotOneMore) {
    element().value = u"🇩🇪"_s.repeated(100000);
    EXPECT_TRUE(insertion.insert(u"a"_s, std::nullopt));
    log.clear();
    element().value = QString(100001, u'x');
    EXPECT_FALSE(insertion.insert(u"a"_s, std::nullopt));
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: ax insert: value too large (100001 chars)"_s));
}

TEST_F(AXInsertServiceTest, DeclinesWhatCannotBeSet) {
    element().isSettable = false;
    EXPECT_FALSE(insertion.insert(u"a"_s, std::nullopt));
    element().role = std::nullopt;
    EXPECT_FALSE(insertion.insert(u"a"_s, std::nullopt));
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: ax insert: AXSelectedText not settable (role=text)"_s,
                                         u"insert: ax insert: AXSelectedText not settable (role=unknown)"_s));
    EXPECT_THAT(element().written, IsEmpty());
}

TEST_F(AXInsertServiceTest, TellsTheCodeOfARefusal) {
    element().answer = tl::unexpected(AccessibilityError::dropped);
    EXPECT_FALSE(insertion.insert(u"a"_s, std::nullopt));
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: ax insert: set failed with AXError 3"_s));
    clock.advance(1s);
    EXPECT_EQ(unverified, 0);
}

TEST_F(AXInsertServiceTest, TellsWhenTheValueStaysAsItWas) {
    element().value = u"same"_s;
    EXPECT_TRUE(insertion.insert(u"same"_s, std::nullopt));
    clock.advance(1s);
    EXPECT_EQ(log.lines().last(),
              u"insert: ax insert: value still unchanged 0.4s later — text may not have landed"_s);
    EXPECT_EQ(unverified, 1);
}

TEST_F(AXInsertServiceTest, AssumesNothingOfAnElementThatWentAway) {
    EXPECT_TRUE(insertion.insert(u"a"_s, std::nullopt));
    element().value = std::nullopt;
    clock.advance(1s);
    EXPECT_EQ(log.lines().last(), u"insert: ax insert: unverified (value no longer readable)"_s);
    EXPECT_EQ(unverified, 0);
}

TEST_F(AXInsertServiceTest, VerifiesInsertionsIndependently) {
    EXPECT_TRUE(insertion.insert(u"a"_s, std::nullopt));
    clock.advance(200ms);
    EXPECT_TRUE(insertion.insert(u"b"_s, std::nullopt));
    clock.advance(200ms);
    EXPECT_EQ(unverified, 1);
    clock.advance(200ms);
    EXPECT_EQ(unverified, 2);
    EXPECT_THAT(element().renewals, ElementsAre(250ms, 250ms));
}

} // namespace
} // namespace velorin

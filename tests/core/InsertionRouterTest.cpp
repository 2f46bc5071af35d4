#include "tests/core/ModelFixture.h"

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace velorin {
namespace {

class InsertionRouterOfTheModel : public ModelFixture {};

TEST_F(InsertionRouterOfTheModel, WhiteSpaceAloneIsNotInsertedAndKeepsTheLastText) {
    start();
    model->insertText(u"hello"_s, editor());
    model->insertText(u" \n"_s, editor());
    EXPECT_EQ(model->lastInsertedText(), u"hello"_s);
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"hello"_s));
}

TEST_F(InsertionRouterOfTheModel, WithoutPermissionNothingIsTried) {
    start();
    trust.processTrusted = false;
    model->insertText(u"hello"_s, editor());
    EXPECT_FALSE(model->accessibilityGranted());
    EXPECT_EQ(model->errorMessage(),
              u"Text is ready, but Accessibility permission is needed to type it into other apps."_s);
    EXPECT_THAT(pasteboard.calls, IsEmpty());
    EXPECT_EQ(model->lastInsertedText(), QString());
}

TEST_F(InsertionRouterOfTheModel, BringsTheTargetBackWhenTheUserHasGoneElsewhere) {
    start();
    workspace.frontmost->processIdentifier = 99;
    model->insertText(u"hello"_s, editor());
    EXPECT_THAT(workspace.activated, ElementsAre(editor()));
}

TEST_F(InsertionRouterOfTheModel, WithoutATargetTakesWhatIsInFront) {
    start();
    model->insertText(u"hello"_s, std::nullopt);
    ASSERT_EQ(keyboard.chords.size(), 1U);
    EXPECT_EQ(keyboard.chords.front().second, editor());
    EXPECT_THAT(workspace.activated, IsEmpty());
}

TEST_F(InsertionRouterOfTheModel, NeverActivatesAWindowOfItsOwn) {
    start();
    auto own = editor();
    own.processIdentifier = workspace.currentProcess;
    model->insertText(u"hello"_s, own);
    EXPECT_THAT(workspace.activated, IsEmpty());
}

TEST_F(InsertionRouterOfTheModel, APasteThatNobodyReadIsTold) {
    start();
    model->insertText(u"hello"_s, editor());
    clock.advance(std::chrono::seconds(6));
    EXPECT_EQ(model->errorMessage(),
              u"Text may not have reached the app — it's in the transcript above if you need Copy."_s);
}

TEST_F(InsertionRouterOfTheModel, LogsThePathButNotTheText) {
    start();
    log.clear();
    model->insertText(u"swordfish"_s, editor());
    EXPECT_THAT(log.lines(), ElementsAre(u"insert: insertion path: clipboard paste"_s));
}

} // namespace
} // namespace velorin

#include "shortcuts/DictationShortcutSessionController.h"

#include <gmock/gmock.h>

#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr auto hold = RecordingTriggerMode::hold;
constexpr auto toggle = RecordingTriggerMode::toggle;
using Mode = std::optional<RecordingTriggerMode>;

struct Row {
    Mode before;
    ShortcutEvent event;
    Mode after;
    QString action;
};

const Row rows[] = {
    {{}, ShortcutEvent::holdActivated, hold, u"start(hold)"_s},
    {{}, ShortcutEvent::holdDeactivated, {}, {}},
    {{}, ShortcutEvent::toggleActivated, toggle, u"start(toggle)"_s},
    {{}, ShortcutEvent::toggleDeactivated, {}, {}},
    {{}, ShortcutEvent::copyAgainTriggered, {}, {}},
    {hold, ShortcutEvent::holdActivated, hold, {}},
    {hold, ShortcutEvent::holdDeactivated, {}, u"stop"_s},
    {hold, ShortcutEvent::toggleActivated, toggle, u"switchedToToggle"_s},
    {hold, ShortcutEvent::toggleDeactivated, hold, {}},
    {hold, ShortcutEvent::copyAgainTriggered, hold, {}},
    {toggle, ShortcutEvent::holdActivated, toggle, {}},
    {toggle, ShortcutEvent::holdDeactivated, toggle, {}},
    {toggle, ShortcutEvent::toggleActivated, {}, u"stop"_s},
    {toggle, ShortcutEvent::toggleDeactivated, toggle, {}},
    {toggle, ShortcutEvent::copyAgainTriggered, toggle, {}},
};

QStringList descriptions(const std::vector<DictationShortcutAction>& actions) {
    QStringList texts;
    for (const auto& action : actions)
        texts += action.description();
    return texts;
}

TEST(DictationShortcutSessionController, FollowsItsTable) {
    for (const auto& row : rows) {
        DictationShortcutSessionController session{row.before};
        const auto actions = descriptions(session.handle(row.event));
        EXPECT_EQ(actions, row.action.isEmpty() ? QStringList() : QStringList(row.action))
            << name(row.event).toStdString();
        EXPECT_EQ(session.activeMode, row.after) << name(row.event).toStdString();
    }
}

TEST(DictationShortcutSessionController, HasNoModeAtFirst) {
    EXPECT_EQ(DictationShortcutSessionController().activeMode, Mode());
}

TEST(DictationShortcutSessionController, LatchesAHoldThatWasTapped) {
    DictationShortcutSessionController session;
    QStringList actions;
    for (const auto event :
         {ShortcutEvent::holdActivated, ShortcutEvent::toggleActivated, ShortcutEvent::toggleDeactivated,
          ShortcutEvent::holdDeactivated, ShortcutEvent::holdActivated, ShortcutEvent::toggleActivated})
        actions += descriptions(session.handle(event));
    EXPECT_EQ(actions, (QStringList{u"start(hold)"_s, u"switchedToToggle"_s, u"stop"_s}));
    EXPECT_EQ(session.activeMode, Mode());
}

} // namespace
} // namespace velorin

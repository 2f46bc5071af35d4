#include "shortcuts/ShortcutBackend.h"

#include "platform/Log.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeEventTap.h"

#include <QCoreApplication>
#include <QThread>

#include <gmock/gmock.h>

#include <future>
#include <memory>
#include <thread>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using enum ShortcutEvent;

constexpr KeyEvent fnDown{.type = KeyEvent::flagsChanged, .keyCode = 63, .flags = 0x800000};
constexpr KeyEvent fnUp{.type = KeyEvent::flagsChanged, .keyCode = 63, .flags = 0};
constexpr KeyEvent f5Down{.type = KeyEvent::keyDown, .keyCode = 96};
constexpr KeyEvent f5Up{.type = KeyEvent::keyUp, .keyCode = 96};
constexpr KeyEvent capsLock{.type = KeyEvent::flagsChanged, .keyCode = 57, .flags = 0x10000};

ShortcutConfiguration holdF5() {
    return {.hold = {.keyCode = 96, .keyDisplay = u"F5"_s, .kind = ShortcutBindingKind::key}};
}

class ShortcutBackendTest : public testing::Test {
protected:
    ShortcutBackendTest() { connect(); }

    void connect() {
        backend_->onEvent = [this](ShortcutEvent event) {
            EXPECT_EQ(QThread::currentThread(), QCoreApplication::instance()->thread());
            events_.push_back(event);
        };
        backend_->onTapUnavailable = [this](const QString& message) { messages_ += message; };
        backend_->onTapStatusChanged = [this](bool isActive) { statuses_.push_back(isActive); };
    }

    void suspend(TapTrouble trouble) {
        std::thread(tap_.listener.onSuspended, trouble).join();
        deliver();
    }
    void resume() {
        std::thread(tap_.listener.onResumed).join();
        deliver();
    }
    static void deliver() { QCoreApplication::sendPostedEvents(); }

    FakeEventTap tap_;
    FakeClock clock_;
    std::unique_ptr<ShortcutBackend> backend_ = std::make_unique<ShortcutBackend>(tap_, clock_);
    std::vector<ShortcutEvent> events_;
    QStringList messages_;
    std::vector<bool> statuses_;
};

TEST_F(ShortcutBackendTest, StartsOneTap) {
    EXPECT_FALSE(backend_->tapActive());
    EXPECT_TRUE(backend_->ensureTap());
    EXPECT_TRUE(backend_->ensureTap());
    EXPECT_TRUE(backend_->tapActive());
    EXPECT_EQ(tap_.starts, 1);
    EXPECT_EQ(tap_.stops, 0);
    EXPECT_THAT(statuses_, ElementsAre(true));
    EXPECT_EQ(messages_, QStringList());
}

TEST_F(ShortcutBackendTest, SaysWhyThereIsNoTap) {
    tap_.error = EventTapError::notPermitted;
    EXPECT_FALSE(backend_->ensureTap());
    tap_.error = EventTapError::unsupportedSession;
    EXPECT_FALSE(backend_->ensureTap());
    EXPECT_FALSE(backend_->tapActive());
    EXPECT_EQ(messages_,
              (QStringList{u"Accessibility permission is required for the activation shortcut. Grant it in "
                           "System Settings > Privacy & Security > Accessibility, then click Relaunch."_s,
                           u"Velorin needs an X11 session for now. Choose one when you log in."_s}));
    EXPECT_THAT(statuses_, ElementsAre(false, false));
    tap_.error.reset();
    EXPECT_TRUE(backend_->ensureTap());
    EXPECT_EQ(tap_.stops, 0);
}

TEST_F(ShortcutBackendTest, StartsAnewAfterTheTapWasLost) {
    backend_->ensureTap();
    std::thread(tap_.listener.onLost).join();
    deliver();
    EXPECT_FALSE(backend_->tapActive());
    EXPECT_THAT(statuses_, ElementsAre(true, false));
    EXPECT_TRUE(backend_->ensureTap());
    EXPECT_EQ(tap_.stops, 1);
    EXPECT_EQ(tap_.starts, 2);
    EXPECT_THAT(statuses_, ElementsAre(true, false, true));
}

TEST_F(ShortcutBackendTest, SaysThatShortcutsDoNotWorkAfterTwoSecondsWithout) {
    backend_->ensureTap();
    suspend(TapTrouble::serverIsLate);
    clock_.advance(1999ms);
    EXPECT_EQ(messages_, QStringList());
    clock_.advance(1ms);
    EXPECT_EQ(messages_,
              QStringList{u"Shortcuts do not work at the moment: the display server does not answer."_s});
    EXPECT_TRUE(backend_->tapActive()) << "it comes back by itself";
    EXPECT_TRUE(backend_->ensureTap());
    EXPECT_EQ(tap_.starts, 1);
    EXPECT_THAT(statuses_, ElementsAre(true, false));
    resume();
    EXPECT_THAT(statuses_, ElementsAre(true, false, true));
    clock_.advance(10s);
    EXPECT_THAT(messages_, SizeIs(1));
}

TEST_F(ShortcutBackendTest, SaysNothingOfATroubleThatIsOverSoon) {
    backend_->ensureTap();
    suspend(TapTrouble::serverIsLate);
    clock_.advance(1900ms);
    suspend(TapTrouble::keysAreTaken);
    resume();
    clock_.advance(10s);
    EXPECT_EQ(messages_, QStringList());
    EXPECT_THAT(statuses_, ElementsAre(true)) << "an all-clear would hide what others have said";
}

TEST_F(ShortcutBackendTest, SaysWhyAnewWhenTheTroubleChanges) {
    backend_->ensureTap();
    suspend(TapTrouble::serverIsLate);
    clock_.advance(1s);
    suspend(TapTrouble::keysAreTaken);
    clock_.advance(1s);
    const auto taken = u"Shortcuts do not work at the moment: another program has taken their keys."_s;
    EXPECT_EQ(messages_, QStringList{taken}) << "two seconds in all";
    suspend(TapTrouble::serverIsLate);
    EXPECT_THAT(messages_, SizeIs(2));
}

TEST_F(ShortcutBackendTest, SaysNothingOfATapThatDidNotStartOrWasLost) {
    tap_.error = EventTapError::notPermitted;
    EXPECT_FALSE(backend_->ensureTap());
    tap_.error.reset();
    backend_->ensureTap();
    suspend(TapTrouble::serverIsLate);
    std::thread(tap_.listener.onLost).join();
    deliver();
    suspend(TapTrouble::serverIsLate);
    clock_.advance(10s);
    EXPECT_THAT(messages_, SizeIs(1)) << "that it did not start";
}

TEST_F(ShortcutBackendTest, EndsWhatWasHeldWhenTheTapIsLost) {
    backend_->setConfiguration(
        {.hold = holdF5().hold, .toggle = {.keyCode = 63, .kind = ShortcutBindingKind::modifierKey}});
    backend_->ensureTap();
    tap_.handler(f5Down);
    tap_.handler(fnDown);
    std::thread(tap_.listener.onLost).join();
    deliver();
    deliver(); // what the loss posted itself
    EXPECT_THAT(events_, ElementsAre(holdActivated, toggleActivated, holdDeactivated, toggleDeactivated));
    EXPECT_TRUE(backend_->ensureTap());
    EXPECT_EQ(tap_.handler(fnUp), TapAnswer::pass) << "its press was another tap's";
    tap_.handler(f5Down);
    deliver();
    EXPECT_THAT(events_, ElementsAre(holdActivated, toggleActivated, holdDeactivated, toggleDeactivated,
                                     holdActivated));
}

TEST_F(ShortcutBackendTest, AnswersWhileItsLogIsStuck) {
    static std::promise<void> isRead;
    static const auto reading = isRead.get_future().share();
    QLoggingCategory::setFilterRules(u"dev.orrin.velorin.tap.debug=true"_s);
    const auto previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { reading.wait(); });
    backend_->ensureTap();
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(tap_.handler(fnDown), TapAnswer::swallow);
        EXPECT_EQ(tap_.handler(fnUp), TapAnswer::swallow);
    }
    deliver();
    EXPECT_THAT(events_, SizeIs(20)) << "and its edges arrive";
    isRead.set_value();
    backend_.reset();
    qInstallMessageHandler(previous);
    QLoggingCategory::setFilterRules({});
}

TEST_F(ShortcutBackendTest, DeliversTheEdgesOfSwallowedEventsInOrder) {
    backend_->ensureTap();
    std::thread([this] {
        EXPECT_EQ(tap_.handler(fnDown), TapAnswer::swallow);
        EXPECT_EQ(tap_.handler(fnUp), TapAnswer::swallow);
    }).join();
    EXPECT_THAT(events_, IsEmpty()) << "edges are posted, never called";
    deliver();
    EXPECT_THAT(events_, ElementsAre(holdActivated, holdDeactivated));
}

TEST_F(ShortcutBackendTest, DropsEdgesWhenNobodyListensOrWhenItIsGone) {
    backend_->ensureTap();
    tap_.handler(fnDown);
    backend_->onEvent = nullptr;
    deliver();
    connect();
    tap_.handler(fnUp);
    backend_.reset();
    EXPECT_EQ(tap_.stops, 1);
    deliver();
    EXPECT_THAT(events_, IsEmpty());
}

TEST_F(ShortcutBackendTest, PassesAutorepeatsUntouched) {
    backend_->setConfiguration(holdF5());
    backend_->ensureTap();
    auto repeat = f5Down;
    repeat.isAutorepeat = true;
    EXPECT_EQ(tap_.handler(repeat), TapAnswer::pass);
    deliver();
    EXPECT_THAT(events_, IsEmpty());
    EXPECT_EQ(tap_.handler(f5Down), TapAnswer::swallow);
    EXPECT_EQ(tap_.handler(repeat), TapAnswer::pass);
    EXPECT_EQ(tap_.handler(f5Up), TapAnswer::swallow);
    deliver();
    EXPECT_THAT(events_, ElementsAre(holdActivated, holdDeactivated));
}

TEST_F(ShortcutBackendTest, TakesNoNoticeOfTheRepeatMarkOfFlags) {
    backend_->ensureTap();
    auto marked = fnDown;
    marked.isAutorepeat = true;
    EXPECT_EQ(tap_.handler(marked), TapAnswer::swallow);
}

TEST_F(ShortcutBackendTest, PassesEverythingWhileCapturing) {
    backend_->ensureTap();
    backend_->setCaptureMode(true);
    EXPECT_EQ(tap_.handler(fnDown), TapAnswer::pass);
    EXPECT_EQ(tap_.handler(fnUp), TapAnswer::pass);
    backend_->setCaptureMode(false);
    EXPECT_EQ(tap_.handler(fnDown), TapAnswer::swallow);
    deliver();
    EXPECT_THAT(events_, ElementsAre(holdActivated));
}

TEST_F(ShortcutBackendTest, ForgetsWhatWasHeldWhenCapturingBegins) {
    backend_->ensureTap();
    tap_.handler(fnDown);
    backend_->setCaptureMode(true);
    backend_->setCaptureMode(true);
    backend_->setCaptureMode(false);
    EXPECT_EQ(tap_.handler(fnUp), TapAnswer::pass);
    deliver();
    EXPECT_THAT(events_, ElementsAre(holdActivated)) << "there is no edge for the end";
    EXPECT_EQ(backend_->configuration(), ShortcutConfiguration::defaultConfiguration());
}

TEST_F(ShortcutBackendTest, LeavesARunningHoldAloneOnAnEqualConfiguration) {
    backend_->ensureTap();
    tap_.handler(fnDown);
    backend_->setConfiguration(ShortcutConfiguration::defaultConfiguration());
    EXPECT_EQ(tap_.handler(fnUp), TapAnswer::swallow);
    deliver();
    EXPECT_THAT(events_, ElementsAre(holdActivated, holdDeactivated));
}

TEST_F(ShortcutBackendTest, FollowsAChangeOfConfiguration) {
    backend_->ensureTap();
    tap_.handler(fnDown);
    backend_->setConfiguration(holdF5());
    EXPECT_EQ(backend_->configuration(), holdF5());
    EXPECT_EQ(tap_.handler(fnUp), TapAnswer::pass);
    EXPECT_EQ(tap_.handler(f5Down), TapAnswer::swallow);
    deliver();
    EXPECT_THAT(events_, ElementsAre(holdActivated, holdActivated));
}

TEST_F(ShortcutBackendTest, TellsTheTapItsKeysBeforeItStartsAndOnlyWhenTheyChange) {
    EXPECT_THAT(tap_.tappedKeys, IsEmpty());
    backend_->ensureTap();
    ASSERT_THAT(tap_.tappedKeys, SizeIs(1));
    EXPECT_EQ(tap_.tappedKeys[0].at(0).keyCode, 63);
    backend_->setConfiguration(ShortcutConfiguration::defaultConfiguration());
    backend_->setCaptureMode(false);
    EXPECT_THAT(tap_.tappedKeys, SizeIs(1));
    backend_->setConfiguration(holdF5());
    ASSERT_THAT(tap_.tappedKeys, SizeIs(2));
    EXPECT_EQ(tap_.tappedKeys[1].at(0).keyCode, 96);
}

TEST_F(ShortcutBackendTest, HoldsNoKeyWhileCapturingOrDisabled) {
    backend_->ensureTap();
    backend_->setCaptureMode(true);
    backend_->setConfiguration(holdF5());
    ASSERT_THAT(tap_.tappedKeys, SizeIs(2));
    EXPECT_THAT(tap_.tappedKeys[1], IsEmpty());
    backend_->setCaptureMode(false);
    ASSERT_THAT(tap_.tappedKeys, SizeIs(3));
    EXPECT_EQ(tap_.tappedKeys[2].at(0).keyCode, 96);
    backend_->setConfiguration(ShortcutConfiguration::disabled());
    ASSERT_THAT(tap_.tappedKeys, SizeIs(4));
    EXPECT_THAT(tap_.tappedKeys[3], IsEmpty());
    EXPECT_TRUE(backend_->tapActive());
    EXPECT_EQ(tap_.stops, 0);
}

/// Collects what is logged while it lives.
class LogLines final {
public:
    explicit LogLines(const char* rules) {
        QLoggingCategory::setFilterRules(QString::fromLatin1(rules));
        lines.clear();
        previous_ = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& line) { lines += line; });
    }
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;
    ~LogLines() {
        qInstallMessageHandler(previous_);
        QLoggingCategory::setFilterRules({});
    }

    static inline QStringList lines;

private:
    QtMessageHandler previous_ = nullptr;
};

TEST_F(ShortcutBackendTest, LogsEachKeyboardEventThatTheMatcherSaw) {
    backend_->setConfiguration({.hold = ShortcutConfiguration::defaultConfiguration().hold,
                                .toggle = ShortcutConfiguration::defaultConfiguration().hold});
    backend_->ensureTap();
    const LogLines log("dev.orrin.velorin.tap.debug=true");
    tap_.handler(fnDown);
    tap_.handler(capsLock);
    tap_.handler(f5Down);
    tap_.handler({.type = KeyEvent::keyDown, .keyCode = 96, .flags = 0, .isAutorepeat = true});
    tap_.handler({.type = 0xFFFFFFFE, .keyCode = 0, .flags = 0});
    backend_->setCaptureMode(true);
    tap_.handler(f5Up);
    backend_.reset(); // the log is written behind the answers, and to its end when the backend goes
    EXPECT_EQ(LogLines::lines,
              (QStringList{u"raw flagsChanged code=63 flags=8388608 decision=consume "
                           "events=holdActivated,toggleActivated"_s,
                           u"raw flagsChanged code=57 flags=65536 decision=passthrough events="_s,
                           u"raw keyDown code=96 flags=0 decision=passthrough events="_s}));
}

TEST_F(ShortcutBackendTest, LogsNothingByDefault) {
    backend_->ensureTap();
    const LogLines log("");
    tap_.handler(fnDown);
    backend_.reset();
    EXPECT_EQ(LogLines::lines, QStringList());
}

} // namespace
} // namespace velorin

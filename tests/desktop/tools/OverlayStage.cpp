// The overlay by itself, over a model without microphone and keys, for pictures and measurements. A line of
// JSON on standard input is carried out and answered with a line:
//
//   {"phase": "listening", "text": "hello", "levels": [0.5], "app": "Slack", …}   ready
//   {"show": true}                                                                painted MILLISECONDS
//   {"hide": true}                                                                hidden
//   {"measureShows": 100}                                                         a JSON object of
//   milliseconds
//   {"measureMotion": 5}                                                          a JSON object
//
// The arguments are those of Qt.
#include "platform/linux/x11/X11FloatingWindows.h"
#include "tests/core/ModelDesk.h"
#include "ui/HUDController.h"
#include "ui/OverlayPanel.h"
#include "ui/Theme.h"
#include "ui/ViewEngine.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdio>
#include <ctime>
#include <iostream>

using namespace Qt::Literals::StringLiterals;
using namespace velorin;

namespace {

class ToldAppearance final : public Appearance {
public:
    bool isDark = false;
    bool isStill = true;
    Listeners listeners;

    std::optional<bool> prefersDark() const override { return isDark; }
    bool reducesMotion() const override { return isStill; }
    Subscription onChange(std::function<void()> action) override { return listeners.add(std::move(action)); }
};

/// Real time, which stands still where pictures are taken.
class StageTime final : public Clock {
public:
    bool isStill = true;

    QDateTime now() const override {
        return isStill ? QDateTime::fromMSecsSinceEpoch(1'700'000'000'000).toUTC()
                       : QDateTime::currentDateTimeUtc();
    }
    Subscription after(std::chrono::milliseconds, std::function<void()>) override { return {}; }
};

double processorMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

void answer(const QString& line) { std::cout << qPrintable(line) << std::endl; }
void answer(const QJsonDocument& json) { answer(QString::fromUtf8(json.toJson(QJsonDocument::Compact))); }

class OverlayStage final {
public:
    OverlayStage() : model_(desk_.start()) {
        QObject::connect(&hud_, &HUDController::painted, [this] { onPainted(); });
    }
    ~OverlayStage() { desk_.endModel(); }

    void carryOut(const QJsonObject& order) {
        setSurroundings(order);
        setSession(order);
        if (order.contains(u"show"))
            show();
        else if (order.contains(u"hide"))
            hide();
        else if (order.contains(u"measureShows"))
            measureShows(order[u"measureShows"].toInt());
        else if (order.contains(u"measureMotion"))
            measureMotion(order[u"measureMotion"].toInt());
        else
            answer(u"ready"_s);
    }

private:
    void setSurroundings(const QJsonObject& order) {
        if (!order.contains(u"dark") && !order.contains(u"still"))
            return;
        appearance_.isDark = order[u"dark"].toBool(appearance_.isDark);
        appearance_.isStill = order[u"still"].toBool(appearance_.isStill);
        clock_.isStill = appearance_.isStill;
        appearance_.listeners.tell();
    }

    void setSession(const QJsonObject& order) {
        static const QStringList phases{u"listening"_s, u"processing"_s, u"done"_s, u"error"_s};
        static const QStringList processings{u"polish"_s, u"edit"_s, u"generate"_s, u"transcribe"_s};
        if (order.contains(u"style"))
            model_.setOverlayStyle(*fromRawString<OverlayStyle>(order[u"style"].toString()));
        if (order.contains(u"phase"))
            model_.setOverlayPhase(static_cast<OverlayPhase>(phases.indexOf(order[u"phase"].toString())));
        if (order.contains(u"processing"))
            model_.setAIProcessing(order[u"processing"].isString()
                                       ? std::optional(static_cast<AIProcessing>(
                                             processings.indexOf(order[u"processing"].toString())))
                                       : std::nullopt);
        if (order.contains(u"edit"))
            model_.setIsEditSession(order[u"edit"].toBool());
        if (order.contains(u"generate"))
            model_.setIsGenerateSession(order[u"generate"].toBool());
        if (order.contains(u"profile"))
            model_.setActiveProfile(*contextProfileFromRawString(order[u"profile"].toString()));
        if (order.contains(u"text"))
            model_.setCleanedText(order[u"text"].toString());
        if (order.contains(u"seconds"))
            model_.setRecordingStartedAt(clock_.now().addMSecs(-order[u"seconds"].toInt() * 1000 - 100));
        if (order.contains(u"levels"))
            setLevels(order[u"levels"].toArray());
        if (order.contains(u"app"))
            setApp(order);
    }

    void setLevels(const QJsonArray& values) {
        QList<float> levels;
        for (const auto& value : values) // what is no number stands for a level that is none
            levels.append(value.isDouble() ? static_cast<float>(value.toDouble()) : std::nanf(""));
        model_.setLevels(levels);
    }

    void setApp(const QJsonObject& order) {
        if (!order[u"app"].isString()) {
            model_.setTargetApp(std::nullopt);
            return;
        }
        RunningApplication app;
        app.localizedName = order[u"app"].toString();
        if (order[u"icon"].isString())
            app.icon = order[u"icon"].toString();
        app.window = static_cast<quint64>(order[u"window"].toInteger());
        model_.setTargetApp(app);
    }

    void onPainted() {
        paintedAfter_ = static_cast<double>(sinceShow_.nsecsElapsed()) / 1e6;
        loop_.quit();
    }

    void show() {
        sinceShow_.start();
        paintedAfter_ = -1;
        hud_.show(model_);
        waitAtMost(5000);
        answer(u"painted %1"_s.arg(paintedAfter_));
    }

    void waitAtMost(int milliseconds) {
        QTimer patience;
        QObject::connect(&patience, &QTimer::timeout, &loop_, &QEventLoop::quit);
        patience.start(milliseconds);
        loop_.exec();
    }

    /// Until it is painted and can be seen, if only faintly: the fade has begun.
    double showUntilSeen() {
        sinceShow_.start();
        hud_.show(model_);
        loop_.exec();
        QEventLoop fade;
        const auto seen =
            QObject::connect(hud_.panel(), &QWindow::opacityChanged, &fade, [&fade](double opacity) {
                if (opacity > 0)
                    fade.quit();
            });
        if (hud_.panel()->opacity() <= 0)
            fade.exec();
        QObject::disconnect(seen);
        return static_cast<double>(sinceShow_.nsecsElapsed()) / 1e6;
    }

    void waitUntilGone() {
        if (hud_.panel() == nullptr || !hud_.panel()->isVisible())
            return;
        QEventLoop gone;
        QObject::connect(hud_.panel(), &OverlayPanel::disappeared, &gone, &QEventLoop::quit);
        gone.exec();
    }

    void hide() {
        hud_.hide();
        waitUntilGone();
        answer(u"hidden"_s);
    }

    void measureShows(int count) {
        QJsonArray painted;
        QJsonArray seen;
        for (int i = 0; i < count; ++i) {
            seen.append(showUntilSeen());
            painted.append(paintedAfter_);
            hud_.hide();
            waitUntilGone();
        }
        answer(QJsonDocument(QJsonObject{{u"painted"_s, painted}, {u"seen"_s, seen}}));
    }

    void measureMotion(int seconds) {
        QJsonArray intervals;
        QJsonArray levelDelays;
        QElapsedTimer sinceFrame;
        QElapsedTimer sinceLevel;
        hud_.show(model_);
        loop_.exec();
        sinceFrame.start();
        const auto swapped = QObject::connect(hud_.panel(), &QQuickWindow::frameSwapped, [&] {
            intervals.append(static_cast<double>(sinceFrame.nsecsElapsed()) / 1e6);
            sinceFrame.start();
            if (sinceLevel.isValid())
                levelDelays.append(static_cast<double>(sinceLevel.nsecsElapsed()) / 1e6);
            sinceLevel.invalidate();
        });
        // The microphone gives a level every 21 ms, the recogniser a text about three times a second.
        QTimer levels;
        int count = 0;
        QObject::connect(&levels, &QTimer::timeout, [&] {
            if (!sinceLevel.isValid())
                sinceLevel.start();
            model_.appendLevel(static_cast<float>(++count % 17) / 17);
        });
        levels.setTimerType(Qt::PreciseTimer);
        levels.start(21);
        QTimer words;
        QObject::connect(&words, &QTimer::timeout,
                         [&] { model_.setCleanedText(model_.cleanedText() + u" word"_s); });
        words.start(330);
        const double before = processorMilliseconds();
        QElapsedTimer whole;
        whole.start();
        waitAtMost(seconds * 1000);
        const double share =
            (processorMilliseconds() - before) * 1e6 / static_cast<double>(whole.nsecsElapsed());
        QObject::disconnect(swapped);
        levels.stop();
        words.stop();
        hud_.hide();
        waitUntilGone();
        answer(QJsonDocument(QJsonObject{
            {u"intervals"_s, intervals}, {u"levelDelays"_s, levelDelays}, {u"processorShare"_s, share}}));
    }

    StageTime clock_;
    ToldAppearance appearance_;
    Theme theme_{appearance_};
    X11FloatingWindows windows_;
    ViewEngine views_{theme_};
    HUDController hud_{{windows_, views_, clock_}};
    ModelDesk desk_;
    AppModel& model_;
    QEventLoop loop_;
    QElapsedTimer sinceShow_;
    double paintedAfter_ = -1;
};

} // namespace

int main(int argc, char* argv[]) {
    drawViewsInSoftware();
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    OverlayStage stage;
    QSocketNotifier input(fileno(stdin), QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        input.setEnabled(false);
        std::string line;
        if (!std::getline(std::cin, line))
            return QCoreApplication::quit();
        stage.carryOut(QJsonDocument::fromJson(QByteArray::fromStdString(line)).object());
        input.setEnabled(true);
    });
    answer(u"ready"_s);
    return QApplication::exec();
}

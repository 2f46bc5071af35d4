// velorin-insert: the program's own delivery of text, without the speaking.
//
// Makes the platform and the model as the program does, and reads commands from standard input, one JSON
// object a line:
//
//     {"do": "aim"}                               remembers the application in front, as a dictation does
//     {"do": "insert", "text": "…"}               into what was aimed at; into what is in front, if nothing
//     was
//     {"do": "again", "text": "…"}                the same by the copy-again shortcut, into what is in front
//     {"do": "direct", "on": false}               the preference for direct insertion
//     {"do": "beat"}                              nothing; answered, so the main thread lives
//
// Each is answered by a line "reply" with an object: when the command was taken and how long it held the
// main thread (seconds of the monotonic clock, milliseconds), the path, the log of this insertion, the
// application, and what the user was told, empty if nothing. What the user is told later comes as "told".
//
//     {"do": "select"}                            what is selected in what is in front
//
// is answered by a line "selection" with the text, empty for none, how it was read, and the milliseconds.
#include "app/Adapters.h"
#include "core/AppModel.h"
#include "core/MainTasks.h"
#include "delivery/SelectionService.h"
#include "platform/linux/desktop/SystemClock.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QSocketNotifier>

#include <cstdio>
#include <ctime>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

using namespace velorin;

QStringList insertionLog;

void keepInsertionLog(QtMsgType, const QMessageLogContext& context, const QString& message) {
    if (QLatin1StringView(context.category) == "dev.orrin.velorin.insert"_L1)
        insertionLog.append(message);
    std::fprintf(stderr, "%s: %s\n", context.category, message.toUtf8().constData());
}

double now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void say(const char* word, const QJsonObject& object) {
    std::printf("%s %s\n", word, QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

class NoOverlay final : public Overlay {
public:
    void show(AppModel&) override {}
    void hide() override {}
};

class Commands final {
public:
    Commands(AppModel& model, Platform& platform)
        : model_(model), workspace_(platform.workspace),
          paste_(platform.pasteboard, platform.keyboard, platform.trust, platform.clock),
          selections_(platform.accessibility, workspace_, paste_, platform.trust, platform.clock),
          input_(STDIN_FILENO, QSocketNotifier::Read) {
        QObject::connect(&input_, &QSocketNotifier::activated, &input_, [this] { readSome(); });
        QObject::connect(&model_, &AppState::errorMessageChanged, &input_, [this] {
            if (model_.hasErrorMessage())
                say("told", {{u"words"_s, model_.errorMessageText()}, {u"at"_s, now()}});
        });
    }

private:
    void readSome() {
        std::array<char, 65536> bytes{};
        const auto count = read(STDIN_FILENO, bytes.data(), bytes.size());
        if (count <= 0)
            return QCoreApplication::quit();
        unread_.append(bytes.data(), count);
        for (auto end = unread_.indexOf('\n'); end >= 0; end = unread_.indexOf('\n')) {
            const auto command = QJsonDocument::fromJson(unread_.first(end)).object();
            unread_.remove(0, end + 1);
            carryOut(command);
        }
    }

    void carryOut(const QJsonObject& command) {
        if (command[u"do"_s] == u"select"_s)
            return tasks_.launch(tellSelection());
        model_.setErrorMessage({});
        insertionLog.clear();
        const double began = now();
        perform(command);
        const double took = (now() - began) * 1000;
        const auto application = target_ ? target_ : workspace_.frontmostApplication();
        QString path;
        for (const auto& line : insertionLog)
            if (line.startsWith("insertion path: "_L1))
                path = line.section(u": "_s, 1);
        say("reply",
            {{u"began"_s, began},
             {u"took"_s, took},
             {u"path"_s, path},
             {u"told"_s, model_.hasErrorMessage() ? model_.errorMessageText() : QString()},
             {u"log"_s, QJsonArray::fromStringList(insertionLog)},
             {u"application"_s, application ? application->bundleIdentifier.value_or(QString()) : u""_s},
             {u"kin"_s, application ? application->kin.value_or(QString()) : u""_s},
             {u"pid"_s, application ? application->processIdentifier : 0}});
    }

    QCoro::Task<> tellSelection() {
        const auto application = workspace_.frontmostApplication(); // a dictation knows it before it looks
        const double began = now();
        const auto snapshot = co_await selections_.snapshot(application);
        const double took = (now() - began) * 1000;
        const bool isCopied = snapshot && snapshot->source == SelectionSource::clipboard;
        say("selection", {{u"text"_s, snapshot ? snapshot->text : QString()},
                          {u"source"_s, !snapshot  ? u"none"_s
                                        : isCopied ? u"clipboard"_s
                                                   : u"accessibility"_s},
                          {u"took"_s, took}});
    }

    void perform(const QJsonObject& command) {
        const auto verb = command[u"do"_s].toString();
        const auto text = command[u"text"_s].toString();
        if (verb == "aim"_L1)
            target_ = workspace_.frontmostApplication();
        else if (verb == "insert"_L1)
            model_.insertText(text, target_);
        else if (verb == "again"_L1)
            insertAgain(text);
        else if (verb == "direct"_L1)
            model_.setUseDirectInsertion(command[u"on"_s].toBool());
    }

    void insertAgain(const QString& text) {
        model_.setUndeliveredText({});
        model_.setLastInsertedText(text);
        model_.pasteAgain();
    }

    AppModel& model_;
    Workspace& workspace_;
    PasteService paste_;
    SelectionService selections_;
    MainTasks tasks_;
    QSocketNotifier input_;
    QByteArray unread_;
    std::optional<RunningApplication> target_;
};

} // namespace

int main(int argc, char* argv[]) {
    qInstallMessageHandler(keepInsertionLog);
    QLoggingCategory::setFilterRules(u"dev.orrin.velorin.insert.debug=true"_s);
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"velorin"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    SystemClock clock;
    Adapters adapters(clock, [] {});
    NoOverlay hud;
    AppModel model(adapters.platform(), {.finishing = nullptr, .selection = nullptr, .hud = hud});
    const Commands commands(model, adapters.platform());
    say("ready", {});
    return QApplication::exec();
}

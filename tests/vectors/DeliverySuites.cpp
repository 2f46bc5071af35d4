#include "Suites.h"

#include "core/InsertionRouter.h"
#include "tests/core/ModelDesk.h"
#include "tests/support/ElectronFolder.h"
#include "tests/support/LogCapture.h"

#include <QJsonArray>

#include <set>

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {
namespace {

std::optional<RunningApplication> applicationOf(const QJsonValue& app, const ElectronFolder& electron) {
    if (!app.isObject())
        return std::nullopt;
    RunningApplication application = ModelDesk::editor();
    application.bundleIdentifier.reset();
    if (app[u"bundleID"].isString())
        application.bundleIdentifier = app[u"bundleID"].toString();
    application.kin = application.bundleIdentifier;
    application.executablePath = app[u"electron"].toBool() ? electron.executable() : QString();
    return application;
}

QJsonValue textOrNull(const std::optional<QString>& text) { return text ? QJsonValue(*text) : QJsonValue(); }

QJsonValue pasteReason(const QJsonObject& in) {
    const ElectronFolder electron;
    return textOrNull(InsertionRouter::pasteReason(applicationOf(in[u"app"], electron)));
}

/// The services in the order in which they were asked; one that declined cannot be told from its port alone.
class Attempts final {
public:
    void note(const QString& service) { list.append(service); }
    QJsonArray list;
};

class NotingKeyboard final : public SyntheticKeyboard {
public:
    NotingKeyboard(Attempts& attempts, bool accepts) : attempts_(attempts), accepts_(accepts) {}
    bool chord(Chord, const std::optional<RunningApplication>&) override { return true; }
    std::optional<qsizetype> type(const QStringList& characters,
                                  const std::optional<RunningApplication>&) override {
        attempts_.note(u"typing"_s);
        return accepts_ ? std::optional(characters.size()) : std::nullopt;
    }
    PasteboardSelection pasteSource(const std::optional<RunningApplication>&) const override {
        attempts_.note(u"paste"_s);
        return PasteboardSelection::clipboard;
    }

private:
    Attempts& attempts_;
    bool accepts_;
};

class NotingAccessibility final : public Accessibility {
public:
    NotingAccessibility(Attempts& attempts, bool accepts) : attempts_(attempts), accepts_(accepts) {}
    std::shared_ptr<AccessibleElement> focusedElement(qint64, std::chrono::milliseconds) override {
        attempts_.note(u"accessibility"_s);
        return accepts_ ? std::make_shared<FakeElement>() : nullptr;
    }

private:
    Attempts& attempts_;
    bool accepts_;
};

QString serviceOf(const QString& path) {
    if (path.startsWith("insertion path: clipboard"_L1))
        return u"paste"_s;
    return path == u"insertion path: accessibility" ? u"accessibility"_s : u"typing"_s;
}

/// The router's own lines: those of the services stand between them.
QStringList routingLines(const LogCapture& log) {
    return log.lines(u"insert"_s)
        .filter(QRegularExpression(u"^insert: (insertion |clipboard paste declined)"_s))
        .replaceInStrings(QRegularExpression(u"^insert: "_s), QString());
}

QJsonValue route(const QJsonObject& in) {
    const ElectronFolder electron;
    const auto app = applicationOf(in[u"app"], electron);
    const auto accepts = [&](const QString& service) { return in[u"accepts"][service].toVariant().toBool(); };
    ModelDesk desk;
    Attempts attempts;
    NotingKeyboard keyboard(attempts, accepts(u"typing"_s));
    NotingAccessibility accessibility(attempts, accepts(u"accessibility"_s));
    if (!accepts(u"paste"_s))
        desk.pasteboard.saved.reset();
    desk.workspace.frontmost = app;
    auto& given = desk.platform;
    Platform platform{given.clock,
                      given.userDefaults,
                      given.folders,
                      given.secrets,
                      given.trust,
                      given.eventTap,
                      keyboard,
                      given.pasteboard,
                      given.workspace,
                      accessibility,
                      given.languageModel,
                      given.audioInput,
                      given.audioConverters,
                      given.audioFiles,
                      given.recognition,
                      given.marks,
                      given.chatSession,
                      given.transcriptionSession,
                      given.userAccount,
                      given.sessionWatch};
    AppModel model(platform, {.finishing = nullptr, .selection = nullptr, .hud = desk.hud});
    model.setErrorMessage(std::nullopt);
    desk.trust.processTrusted = in[u"trusted"].toBool();
    model.setUseDirectInsertion(in[u"useDirectInsertion"].toBool());
    const LogCapture log;
    model.insertText(in[u"text"].toString(), app);
    const auto lines = routingLines(log);
    const bool isTaken = !lines.isEmpty() && lines.last().startsWith("insertion path"_L1);
    const bool asksForReason = !lines.isEmpty() && model.useDirectInsertion();
    const auto reason = asksForReason ? InsertionRouter::pasteReason(app) : std::nullopt;
    QJsonObject out{{u"attempts"_s, attempts.list},
                    {u"delivered"_s, isTaken ? QJsonValue(serviceOf(lines.last())) : QJsonValue()},
                    {u"error"_s, textOrNull(model.errorMessage())},
                    {u"reason"_s, textOrNull(reason)},
                    {u"lastInsertedTextSet"_s, !model.lastInsertedText().isEmpty()}};
    if (!lines.isEmpty())
        out[u"log"_s] = QJsonArray::fromStringList(lines);
    return out;
}

} // namespace

void addDeliverySuites(SuiteTable& table) {
    table.add(u"insert.pasteReason"_s, &pasteReason);
    table.add(u"insert.route"_s, &route);
}

} // namespace velorin::vectors

#include "app/Adapters.h"

#include "platform/DefaultsValues.h"
#include "platform/linux/desktop/DesktopWorkspace.h"

#include <QGuiApplication>
#include <QInputMethodEvent>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

std::optional<RunningApplication> SessionWorkspace::frontmostApplication() {
    return windows_.frontmostApplication();
}

bool SessionWorkspace::isCurrent(const RunningApplication& application) const {
    return application.processIdentifier == QCoreApplication::applicationPid();
}

void SessionWorkspace::activate(const RunningApplication& application) { windows_.activate(application); }
bool SessionWorkspace::awaitFrontmost(const RunningApplication& application,
                                      std::chrono::milliseconds deadline) {
    return windows_.awaitFrontmost(application, Deadline(deadline));
}
std::optional<QString> SessionWorkspace::windowTitle(const RunningApplication& application) {
    return windows_.titleOf(application);
}

bool SessionWorkspace::insertIntoOwnWindow(const QString& text) {
    auto* const focus = QGuiApplication::focusObject();
    if (!focus)
        return false;
    QInputMethodQueryEvent query(Qt::ImEnabled);
    QCoreApplication::sendEvent(focus, &query);
    if (!query.value(Qt::ImEnabled).toBool())
        return false;
    QInputMethodEvent event;
    event.setCommitString(text);
    QCoreApplication::sendEvent(focus, &event);
    return true;
}

void SessionWorkspace::revealFile(const QString& path) { DesktopWorkspace::revealFile(path); }
void SessionWorkspace::openUrl(const QUrl& url) { DesktopWorkspace::openUrl(url); }
void SessionWorkspace::relaunch() { DesktopWorkspace::relaunch(giveUpName_); }

Adapters::Adapters(Clock& clock, std::function<void()> giveUpName)
    : clock_(clock),
      workspace_(std::move(giveUpName)), platform_{clock_,           userDefaults_,  folders_,
                                                   secrets_,         trust_,         eventTap_,
                                                   keyboard_,        pasteboard_,    workspace_,
                                                   accessibility_,   languageModel_, audioInput_,
                                                   audioConverters_, audioFiles_,    recognition_,
                                                   marks_,           chatSession_,   transcriptionSession_,
                                                   userAccount_,     sessionWatch_} {
    eventTap_.setFnStandIn(DefaultsValues::string(userDefaults_, u"fnStandIn"_s).value_or(u"rightControl"_s));
    folders_.close();
    folders_.removeLeftovers();
}

} // namespace velorin

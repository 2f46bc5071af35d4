#include "app/Adapters.h"

#include "platform/DefaultsValues.h"
#include "platform/linux/desktop/DesktopWorkspace.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

std::optional<RunningApplication> SessionWorkspace::frontmostApplication() {
    return windows_.frontmostApplication();
}

bool SessionWorkspace::isCurrent(const RunningApplication& application) const {
    return application.processIdentifier == QCoreApplication::applicationPid();
}

void SessionWorkspace::activate(const RunningApplication& application) { windows_.activate(application); }
void SessionWorkspace::revealFile(const QString& path) { DesktopWorkspace::revealFile(path); }
void SessionWorkspace::openUrl(const QUrl& url) { DesktopWorkspace::openUrl(url); }
void SessionWorkspace::relaunch() { DesktopWorkspace::relaunch(giveUpName_); }

Adapters::Adapters(Clock& clock, std::function<void()> giveUpName)
    : clock_(clock), workspace_(std::move(giveUpName)),
      recognition_(clock, ModelStore::programFolders(), folders_.dataFolder() + u"/models"_s),
      platform_{clock_,      userDefaults_,    folders_,    secrets_,     trust_,
                eventTap_,   keyboard_,        pasteboard_, workspace_,   languageModel_,
                audioInput_, audioConverters_, audioFiles_, recognition_, marks_} {
    eventTap_.setFnStandIn(DefaultsValues::string(userDefaults_, u"fnStandIn"_s).value_or(u"rightControl"_s));
    folders_.removeLeftovers();
}

} // namespace velorin

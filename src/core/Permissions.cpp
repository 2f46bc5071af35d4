#include "core/Permissions.h"

#include "core/AppModel.h"
#include "platform/Log.h"
#include "platform/Platform.h"
#include "shortcuts/ShortcutBackend.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QString boolName(bool value) { return value ? u"true"_s : u"false"_s; }

} // namespace

Permissions::Permissions(AppModel& model, Platform& platform, ShortcutBackend& shortcuts)
    : model_(model), platform_(platform), shortcuts_(shortcuts) {}

void Permissions::refresh() {
    // A tap that cannot start reports so, and that report asks for a refresh.
    if (isRefreshing_)
        return;
    isRefreshing_ = true;
    model_.setMicrophoneGranted(platform_.trust.isMicrophoneAuthorized());
    model_.setAccessibilityGranted(platform_.trust.isProcessTrusted());
    if (!model_.shortcutConfiguration().isDisabled())
        shortcuts_.ensureTap();
    qCInfo(permissionsLog).noquote()
        << u"perms mic=%1 ax=%2 tap=%3 bindings=%4 axTrustedRaw=trusted=%5"_s.arg(
               boolName(model_.microphoneGranted()), boolName(model_.accessibilityGranted()),
               boolName(shortcuts_.tapActive()), model_.shortcutConfiguration().summary(),
               boolName(platform_.trust.isProcessTrusted()));
    isRefreshing_ = false;
}

void Permissions::applyActivation() {
    shortcuts_.setConfiguration(model_.shortcutConfiguration());
    if (!model_.shortcutConfiguration().isDisabled())
        shortcuts_.ensureTap();
}

void Permissions::relaunch() { platform_.workspace.relaunch(); }

} // namespace velorin

#include "core/InsertionRouter.h"

#include "core/AppModel.h"
#include "delivery/AXInsertService.h"
#include "delivery/ContextDetector.h"
#include "delivery/DeliveredText.h"
#include "delivery/ElectronApplications.h"
#include "delivery/PasteService.h"
#include "delivery/TypingService.h"
#include "platform/Log.h"
#include "platform/Platform.h"
#include "text/WhiteSpace.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// Never sent to the clipboard for being Electron applications.
constexpr std::array<QStringView, 8> directTypingApps{
    u"com.microsoft.VSCode", u"com.todesktop.230313mzl4w4u92", u"com.exafunction.windsurf",
    u"com.apple.Terminal",   u"com.googlecode.iterm2",         u"com.cmuxterm.app",
    u"dev.warp.Warp-Stable", u"com.mitchellh.ghostty",
};

} // namespace

InsertionRouter::InsertionRouter(AppModel& model, Platform& platform, AXInsertService& accessibility,
                                 TypingService& typing, PasteService& paste)
    : model_(model), platform_(platform), accessibility_(accessibility), typing_(typing), paste_(paste) {}

bool InsertionRouter::insertText(const QString& given, const Target& target) {
    const QString text = DeliveredText::cleared(given);
    if (WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).isEmpty())
        return false;
    if (!platform_.trust.isProcessTrusted()) {
        model_.setAccessibilityGranted(false);
        return undelivered(
            text, AppModel::tr(
                      "Text is ready, but Accessibility permission is needed to type it into other apps."));
    }
    model_.setLastInsertedText(text);
    const auto application = target ? target : platform_.workspace.frontmostApplication();
    if (!bringToFront(application)) {
        qCInfo(insertLog).noquote() << u"insertion stopped: another window is in front"_s;
        return undelivered(text, AppModel::tr("Text was not inserted: another window is in front."));
    }
    const auto reason = model_.useDirectInsertion() ? pasteReason(application) : std::nullopt;
    qCInfo(insertLog).noquote() << u"insertion policy: app=%1 preferPaste=%2 reason=%3"_s.arg(
        application && application->bundleIdentifier ? *application->bundleIdentifier : u"nil"_s,
        reason ? u"yes"_s : u"no"_s, reason.value_or(u"direct"_s));
    const bool isOurs = application && platform_.workspace.isCurrent(*application);
    const bool isTaken = isOurs ? platform_.workspace.insertIntoOwnWindow(text) && delivered(u"own window"_s)
                                : tryAll(text, application, reason);
    if (!isTaken)
        return undelivered(text, AppModel::tr("Could not insert text. Check Accessibility permission."));
    model_.setUndeliveredText({});
    return true;
}

bool InsertionRouter::undelivered(const QString& text, const QString& message) {
    model_.setUndeliveredText(text);
    model_.setErrorMessage(message);
    return false;
}

bool InsertionRouter::bringToFront(const Target& application) {
    if (!application || platform_.workspace.isCurrent(*application))
        return true;
    const auto frontmost = platform_.workspace.frontmostApplication();
    if (frontmost && frontmost->processIdentifier == application->processIdentifier)
        return true;
    platform_.workspace.activate(*application);
    return platform_.workspace.awaitFrontmost(*application, activationDeadline);
}

bool InsertionRouter::tryAll(const QString& text, const Target& application,
                             const std::optional<QString>& pasteReason) {
    if (pasteReason) {
        if (paste_.insert(text, application))
            return delivered(u"clipboard paste (web/rich text)"_s);
        qCInfo(insertLog).noquote() << u"clipboard paste declined; falling back to direct insertion"_s;
    }
    if (model_.useDirectInsertion() && tryDirect(text, application))
        return true;
    return !pasteReason && paste_.insert(text, application) && delivered(u"clipboard paste"_s);
}

bool InsertionRouter::tryDirect(const QString& text, const Target& application) {
    const bool skipsAccessibility = application && isElectron(*application);
    if (!skipsAccessibility && accessibility_.insert(text, application))
        return delivered(u"accessibility"_s);
    // Several lines are never typed: in many places the key for a new line sends what stands there.
    return !text.contains(u'\n') && typing_.type(text, application) && delivered(u"synthetic typing"_s);
}

bool InsertionRouter::delivered(const QString& path) {
    qCInfo(insertLog).noquote() << u"insertion path: %1"_s.arg(path);
    return true;
}

std::optional<QString> InsertionRouter::pasteReason(const Target& application) {
    if (!application || !application->kin)
        return std::nullopt;
    const QString& kin = *application->kin;
    if (kin == u"com.apple.Notes")
        return u"notes"_s;
    if (ContextDetector::isBrowser(kin))
        return u"browser"_s;
    if (kin == u"com.tinyspeck.slackmacgap")
        return u"slack"_s;
    if (std::ranges::find(directTypingApps, QStringView(kin)) != directTypingApps.end())
        return std::nullopt;
    return isElectron(*application) ? std::optional(u"electron"_s) : std::nullopt;
}

bool InsertionRouter::isElectron(const RunningApplication& application) {
    return velorin::isElectron(application);
}

void InsertionRouter::pasteAgain() {
    if (platform_.sessionWatch.isAway())
        return; // the window in front is the one that asks for a password
    const QString undelivered = model_.undeliveredText();
    const QString text = undelivered.isEmpty() ? model_.lastInsertedText() : undelivered;
    if (!text.isEmpty())
        insertText(text, platform_.workspace.frontmostApplication());
}

} // namespace velorin

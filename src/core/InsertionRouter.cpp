#include "core/InsertionRouter.h"

#include "core/AppModel.h"
#include "delivery/PasteService.h"
#include "platform/Log.h"
#include "platform/Platform.h"
#include "text/WhiteSpace.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {

InsertionRouter::InsertionRouter(AppModel& model, Platform& platform, PasteService& paste)
    : model_(model), platform_(platform), paste_(paste) {}

void InsertionRouter::insertText(const QString& text, const std::optional<RunningApplication>& target) {
    if (WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).isEmpty())
        return;
    if (!platform_.trust.isProcessTrusted()) {
        model_.setAccessibilityGranted(false);
        model_.setErrorMessage(AppModel::tr(
            "Text is ready, but Accessibility permission is needed to type it into other apps."));
        return;
    }
    model_.setLastInsertedText(text);
    const auto application = target ? target : platform_.workspace.frontmostApplication();
    activateIfNeeded(application);
    if (paste_.insert(text, application)) {
        platform_.marks.mark(Stage::delivered);
        qCInfo(insertLog).noquote() << u"insertion path: clipboard paste"_s;
        return;
    }
    model_.setErrorMessage(AppModel::tr("Could not insert text. Check Accessibility permission."));
}

void InsertionRouter::activateIfNeeded(const std::optional<RunningApplication>& application) {
    if (!application || platform_.workspace.isCurrent(*application))
        return;
    const auto frontmost = platform_.workspace.frontmostApplication();
    if (!frontmost || frontmost->processIdentifier != application->processIdentifier)
        platform_.workspace.activate(*application);
}

void InsertionRouter::insertIntoFrontmostApp(const std::optional<RunningApplication>& target) {
    const QString cleaned = model_.cleanedText();
    insertText(cleaned.isEmpty() ? model_.finalizedText() + model_.volatileText() : cleaned, target);
}

void InsertionRouter::pasteAgain() {
    if (!model_.lastInsertedText().isEmpty())
        insertIntoFrontmostApp(platform_.workspace.frontmostApplication());
}

} // namespace velorin

#include "ui/ErrorNotice.h"

#include "core/AppModel.h"
#include "platform/Notifications.h"
#include "platform/Pasteboard.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {

ErrorNotice::ErrorNotice(AppModel& model, Notifications& notifications, Pasteboard& pasteboard,
                         QString historyFile)
    : model_(model), notifications_(notifications), pasteboard_(pasteboard),
      historyFile_(std::move(historyFile)),
      following_(notifications.onShownChanged([this] { Q_EMIT wordsChanged(); })) {
    connect(&model_, &AppState::errorMessageChanged, this, &ErrorNotice::refresh);
    // Once copied, or delivered later, the same words say no more than they must.
    connect(&model_, &AppState::undeliveredTextChanged, this, [this] {
        if (model_.hasErrorMessage() && !model_.undeliveredText().isEmpty())
            refresh();
    });
    refresh();
}

QString ErrorNotice::words() const {
    const QString more = hint();
    return more.isEmpty() ? model_.errorMessageText() : model_.errorMessageText() + u' ' + more;
}

QString ErrorNotice::hint() const {
    if (!model_.hasErrorMessage() || model_.undeliveredText().isEmpty())
        return {};
    const auto copyAgain = model_.shortcutConfiguration().copyAgain;
    if (copyAgain.kind != ShortcutBindingKind::disabled)
        return tr("Use copy again (%1) to insert it.").arg(copyAgain.displayName());
    if (notifications_.areShown())
        return tr("Use Copy in this message.");
    if (model_.historyEnabled())
        return tr("It is in the history: %1").arg(historyFile_);
    return tr("Choose a shortcut for copy again to insert it.");
}

void ErrorNotice::refresh() {
    Q_EMIT wordsChanged();
    if (!model_.hasErrorMessage()) {
        notifications_.withdraw(u"error"_s);
        return;
    }
    Notification notice{.subject = u"error"_s, .title = tr("Velorin"), .text = words()};
    if (const QString text = model_.undeliveredText(); !text.isEmpty())
        notice.actions.push_back({u"copy"_s, tr("Copy"), [&pasteboard = pasteboard_, text] {
                                      pasteboard.copy(PasteboardSelection::clipboard, text);
                                  }});
    notifications_.show(std::move(notice));
}

} // namespace velorin

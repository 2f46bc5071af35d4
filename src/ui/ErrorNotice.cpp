#include "ui/ErrorNotice.h"

#include "core/AppModel.h"
#include "platform/Notifications.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {

ErrorNotice::ErrorNotice(AppModel& model, Notifications& notifications)
    : model_(model), notifications_(notifications) {
    connect(&model_, &AppState::errorMessageChanged, this, &ErrorNotice::refresh);
    refresh();
}

void ErrorNotice::refresh() {
    if (model_.hasErrorMessage())
        notifications_.show(u"error"_s, tr("Velorin"), model_.errorMessageText());
    else
        notifications_.withdraw(u"error"_s);
}

} // namespace velorin

#include "ui/TrayItem.h"

#include "core/AppModel.h"
#include "ui/BrandMark.h"
#include "ui/ErrorNotice.h"
#include "ui/Theme.h"

#include <QMenu>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// Panels are dark on most desktops, whatever the windows are, and none tells.
constexpr QRgb markOnPanel = qRgb(0xdf, 0xe3, 0xea);

} // namespace

TrayItem::TrayItem(AppModel& model, Theme& theme, TrayHosts& hosts, QMenu& menu, const ErrorNotice& error)
    : model_(model), theme_(theme), hosts_(hosts), menu_(menu), error_(error) {
    connect(&model_, &AppState::isRecordingChanged, this, &TrayItem::refresh);
    connect(&error_, &ErrorNotice::wordsChanged, this, &TrayItem::refresh);
    connect(&theme_, &Theme::changed, this, &TrayItem::refresh);
    following_ = hosts_.onChange([this] { makeIfThereIsAHost(); });
    makeIfThereIsAHost();
}

void TrayItem::makeIfThereIsAHost() {
    // Once made it stays: the toolkit itself brings it back to a host that was started anew.
    if (icon_ || !hosts_.isAnyThere())
        return;
    icon_ = std::make_unique<QSystemTrayIcon>();
    icon_->setContextMenu(&menu_);
    refresh();
    icon_->show();
    Q_EMIT isShownChanged();
}

void TrayItem::refresh() {
    if (!icon_)
        return;
    const bool isRecording = model_.isRecording();
    icon_->setIcon(BrandMark::trayIcon(isRecording ? theme_.color(u"red"_s) : QColor(markOnPanel)));
    const QString name = isRecording ? tr("Velorin, recording") : tr("Velorin");
    icon_->setToolTip(model_.hasErrorMessage() ? name + u'\n' + error_.words() : name);
}

} // namespace velorin

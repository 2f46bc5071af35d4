#include "ui/TrayMenu.h"

#include "core/AppModel.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

// The pictures lie in a library that is linked statically; without this word they would be left out.
static void initPictures() { Q_INIT_RESOURCE(resources); }

namespace velorin {
namespace {

QIcon pictureOf(bool isRecording) {
    return QIcon(isRecording ? u":/velorin/tray-recording.svg"_s : u":/velorin/tray.svg"_s);
}

} // namespace

TrayMenu::TrayMenu(AppModel& model) : model_(model), primary_(menu_.addAction(QString())) {
    initPictures();
    menu_.addSeparator();
    connect(primary_, &QAction::triggered, &model_, &AppModel::toggleDictation);
    connect(menu_.addAction(tr("Quit Velorin")), &QAction::triggered, qApp, &QCoreApplication::quit,
            Qt::QueuedConnection);
    connect(&model_, &AppState::isRecordingChanged, this, &TrayMenu::update);
    connect(&model_, &AppState::errorMessageChanged, this, &TrayMenu::update);
    icon_.setContextMenu(&menu_);
    update();
    icon_.show();
}

void TrayMenu::update() {
    primary_->setText(model_.isRecording() ? tr("Stop dictation") : tr("Start dictation"));
    icon_.setIcon(pictureOf(model_.isRecording()));
    const QString name = model_.isRecording() ? tr("Velorin, recording") : tr("Velorin");
    icon_.setToolTip(model_.hasErrorMessage() ? name + u'\n' + model_.errorMessageText() : name);
}

} // namespace velorin

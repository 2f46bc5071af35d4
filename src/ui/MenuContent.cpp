#include "ui/MenuContent.h"

#include "core/AppModel.h"
#include "ui/UpdateController.h"

#include <QApplication>

namespace velorin {
namespace {

bool haveSameKinds(const QList<MenuRows::Row>& a, const QList<MenuRows::Row>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const auto& left, const auto& right) { return left.kind == right.kind; });
}

/// An ampersand in a text is not meant as the mark of a key.
QString asLabel(QString text) { return text.replace(u'&', QStringLiteral("&&")); }

/// Rows that are only to be read are to be read: styles draw them as faint as what cannot be used.
void makeNotesLegible(QMenu& menu) {
    QPalette palette = QApplication::palette();
    QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    text.setAlphaF(0.68F);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, text);
    menu.setPalette(palette);
}

} // namespace

MenuContent::MenuContent(AppModel& model, UpdateController& updater) : model_(model), updater_(updater) {
    menu_.setToolTipsVisible(true);
    connect(&menu_, &QMenu::aboutToShow, this, [this] { makeNotesLegible(menu_); });
    for (const auto signal :
         {&AppState::isRecordingChanged, &AppState::shortcutConfigurationChanged,
          &AppState::contextModeChanged, &AppState::hasContextChanged, &AppState::activeProfileChanged,
          &AppState::aiGenerateEnabledChanged, &AppState::aiGenerateTriggerChanged,
          &AppState::aiEnabledChanged, &AppState::aiProviderChanged, &AppState::aiEndpointChanged,
          &AppState::aiModelChanged, &AppState::aiKeyConfiguredChanged,
          &AppState::onboardingCompletedChanged})
        connect(&model_, signal, this, &MenuContent::refresh);
    refresh();
}

void MenuContent::refresh() {
    const auto rows = MenuRows::rows(model_);
    if (haveSameKinds(rows, rows_))
        for (qsizetype i = 0; i < rows.size(); ++i)
            menu_.actions().at(i)->setText(asLabel(rows[i].text));
    else
        rebuild(rows);
    rows_ = rows;
}

void MenuContent::rebuild(const QList<MenuRows::Row>& rows) {
    menu_.clear();
    for (const auto& row : rows) {
        if (row.kind == MenuRows::Kind::divider) {
            menu_.addSeparator();
            continue;
        }
        auto* action = menu_.addAction(asLabel(row.text));
        action->setEnabled(row.kind != MenuRows::Kind::note);
        if (row.kind == MenuRows::Kind::quit)
            action->setShortcut(QKeySequence::Quit);
        if (row.kind == MenuRows::Kind::checkForUpdates)
            action->setToolTip(UpdateController::explanation());
        connect(action, &QAction::triggered, this, [this, kind = row.kind] { carryOut(kind); });
    }
}

void MenuContent::carryOut(MenuRows::Kind kind) {
    switch (kind) {
    case MenuRows::Kind::toggleDictation:
        return model_.toggleDictation();
    case MenuRows::Kind::settings:
        return Q_EMIT settingsRequested();
    case MenuRows::Kind::onboarding:
        return Q_EMIT onboardingRequested();
    case MenuRows::Kind::checkForUpdates:
        return updater_.checkForUpdates();
    case MenuRows::Kind::quit:
        // Once the menu is closed: it must not be torn down while it calls us.
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
        return;
    case MenuRows::Kind::divider:
    case MenuRows::Kind::note:
        return;
    }
}

} // namespace velorin

#include "ui/MenuRows.h"

#include "core/AppModel.h"
#include "ui/OverlayLabels.h"

#include <QCoreApplication>

namespace velorin::MenuRows {
namespace {

QString translated(const char* text) { return QCoreApplication::translate("MenuContent", text); }

} // namespace

QString primaryActionTitle(const AppModel& model) {
    return model.isRecording() ? translated(QT_TRANSLATE_NOOP("MenuContent", "Stop dictation"))
                               : translated(QT_TRANSLATE_NOOP("MenuContent", "Start dictation"));
}

QString contextSummary(const AppModel& model) {
    if (model.contextMode() != ContextMode::auto_)
        return translated(QT_TRANSLATE_NOOP("MenuContent", "Context: %1")).arg(label(model.contextMode()));
    if (!model.hasContext())
        return translated(QT_TRANSLATE_NOOP("MenuContent", "Context: Auto"));
    return translated(QT_TRANSLATE_NOOP("MenuContent", "Context: Auto · %1"))
        .arg(OverlayLabels::title(model.activeProfile()));
}

QList<Row> rows(const AppModel& model) {
    QList<Row> rows{
        {Kind::toggleDictation, primaryActionTitle(model)},
        {Kind::divider, {}},
        {Kind::note, translated(QT_TRANSLATE_NOOP("MenuContent", "Activation: %1"))
                         .arg(model.shortcutConfiguration().summary())},
        {Kind::note, contextSummary(model)},
    };
    if (model.aiGenerateEnabled() && model.aiConfigured())
        rows.append({Kind::note,
                     translated(QT_TRANSLATE_NOOP("MenuContent", "Generate: say “%1” then an instruction"))
                         .arg(model.generateTriggerDisplay())});
    rows.append({Kind::divider, {}});
    rows.append({Kind::settings, translated(QT_TRANSLATE_NOOP("MenuContent", "Settings…"))});
    if (model.onboardingCompleted())
        rows.append({Kind::onboarding, translated(QT_TRANSLATE_NOOP("MenuContent", "Show Onboarding…"))});
    rows.append({Kind::checkForUpdates, translated(QT_TRANSLATE_NOOP("MenuContent", "Check for Updates…"))});
    rows.append({Kind::quit, translated(QT_TRANSLATE_NOOP("MenuContent", "Quit Velorin"))});
    return rows;
}

} // namespace velorin::MenuRows

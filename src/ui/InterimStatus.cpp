#include "ui/InterimStatus.h"

#include <QHash>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

InterimStatus::InterimStatus(const Surroundings& surroundings)
    : model_(surroundings.model), workspace_(surroundings.workspace), loginItem_(surroundings.loginItem),
      preferencesFile_(surroundings.preferencesFile), fnStandIn_(surroundings.fnStandIn) {
    for (const auto signal : {&AppState::microphoneGrantedChanged, &AppState::accessibilityGrantedChanged,
                              &AppState::shortcutConfigurationChanged, &AppState::errorMessageChanged,
                              &AppState::onboardingCompletedChanged})
        connect(&model_, signal, this, &InterimStatus::changed);
}

QString InterimStatus::fnKey() const {
    const QHash<QString, QString> names{{u"menu"_s, tr("Menu")},
                                        {u"rightControl"_s, tr("Right Ctrl")},
                                        {u"rightAlt"_s, tr("Right Alt")},
                                        {u"capsLock"_s, tr("Caps Lock")},
                                        {u"scrollLock"_s, tr("Scroll Lock")},
                                        {u"pause"_s, tr("Pause")}};
    return names.value(fnStandIn_);
}

void InterimStatus::setStartsAtLogin(bool value) {
    loginItem_.setEnabled(value);
    Q_EMIT startsAtLoginChanged();
}

void InterimStatus::setHasTray(bool value) {
    if (std::exchange(hasTray_, value) != value)
        Q_EMIT hasTrayChanged();
}

} // namespace velorin

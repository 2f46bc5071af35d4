/// What the interim window tells of the program, read from the model and the desktop: permissions, shortcuts,
/// the last error, the file of the preferences. Main thread.
#pragma once

#include "core/AppModel.h"
#include "platform/LoginItem.h"
#include "platform/Workspace.h"

namespace velorin {

class InterimStatus final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool microphoneGranted READ microphoneGranted NOTIFY changed)
    Q_PROPERTY(bool accessibilityGranted READ accessibilityGranted NOTIFY changed)
    Q_PROPERTY(QString holdShortcut READ holdShortcut NOTIFY changed)
    Q_PROPERTY(QString toggleShortcut READ toggleShortcut NOTIFY changed)
    Q_PROPERTY(QString copyAgainShortcut READ copyAgainShortcut NOTIFY changed)
    Q_PROPERTY(QString lastError READ lastError NOTIFY changed)
    Q_PROPERTY(bool onboardingCompleted READ onboardingCompleted NOTIFY changed)
    Q_PROPERTY(bool startsAtLogin READ startsAtLogin WRITE setStartsAtLogin NOTIFY startsAtLoginChanged)
    Q_PROPERTY(bool hasTray READ hasTray NOTIFY hasTrayChanged)
    Q_PROPERTY(QString fnKey READ fnKey CONSTANT)
    Q_PROPERTY(QString preferencesFile READ preferencesFile CONSTANT)

public:
    struct Surroundings {
        AppModel& model;
        Workspace& workspace;
        LoginItem& loginItem;
        QString preferencesFile;
        QString fnStandIn; ///< As it is stored: which key stands in for Fn.
    };
    /// All outlive it.
    explicit InterimStatus(const Surroundings& surroundings);

    [[nodiscard]] bool microphoneGranted() const { return model_.microphoneGranted(); }
    [[nodiscard]] bool accessibilityGranted() const { return model_.accessibilityGranted(); }
    [[nodiscard]] QString holdShortcut() const { return model_.shortcutConfiguration().hold.displayName(); }
    [[nodiscard]] QString toggleShortcut() const {
        return model_.shortcutConfiguration().toggle.displayName();
    }
    [[nodiscard]] QString copyAgainShortcut() const {
        return model_.shortcutConfiguration().copyAgain.displayName();
    }
    [[nodiscard]] QString lastError() const { return model_.errorMessageText(); }
    [[nodiscard]] bool onboardingCompleted() const { return model_.onboardingCompleted(); }
    [[nodiscard]] bool startsAtLogin() const { return loginItem_.isEnabled(); }
    void setStartsAtLogin(bool value);
    [[nodiscard]] bool hasTray() const { return hasTray_; }
    void setHasTray(bool value);
    /// The key that stands in for Fn as people call it; empty where Fn stands for itself.
    [[nodiscard]] QString fnKey() const;
    [[nodiscard]] QString preferencesFile() const { return preferencesFile_; }

    Q_INVOKABLE void recheck() { model_.refreshPermissions(); }
    Q_INVOKABLE void completeOnboarding() { model_.completeOnboarding(); }
    Q_INVOKABLE void showPreferencesFile() { workspace_.revealFile(preferencesFile_); }

Q_SIGNALS:
    void changed();
    void startsAtLoginChanged();
    void hasTrayChanged();

private:
    AppModel& model_;
    Workspace& workspace_;
    LoginItem& loginItem_;
    QString preferencesFile_;
    QString fnStandIn_;
    bool hasTray_ = false;
};

} // namespace velorin

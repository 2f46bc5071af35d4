/// What the views of the overlay show, read from the model while the overlay is on the screen. Decides
/// nothing and keeps no state of the dictation; while the overlay is hidden it listens to nothing, so that
/// what changes then costs nothing.
///
/// Main thread.
#pragma once

#include "core/AppModel.h"

#include <QPointer>
#include <QVariant>

namespace velorin {

class Clock;

class OverlayContent final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isShown READ isShown NOTIFY isShownChanged)
    Q_PROPERTY(bool isComposited READ isComposited NOTIFY isCompositedChanged)
    Q_PROPERTY(QString look READ look NOTIFY lookChanged)
    Q_PROPERTY(QString phase READ phase NOTIFY stateChanged)
    Q_PROPERTY(QString stateLabel READ stateLabel NOTIFY stateChanged)
    Q_PROPERTY(QString profileTitle READ profileTitle NOTIFY stateChanged)
    Q_PROPERTY(QString sessionTag READ sessionTag NOTIFY stateChanged)
    Q_PROPERTY(QString appName READ appName NOTIFY stateChanged)
    Q_PROPERTY(bool hasApp READ hasApp NOTIFY stateChanged)
    Q_PROPERTY(QString appIcon READ appIcon NOTIFY stateChanged)
    Q_PROPERTY(QString text READ text NOTIFY textChanged)
    Q_PROPERTY(bool isLive READ isLive NOTIFY textChanged)
    Q_PROPERTY(QString elapsed READ elapsed NOTIFY elapsedChanged)

public:
    explicit OverlayContent(Clock& clock);

    /// Reads the model from now on, until `rest()`.
    void follow(AppModel& model);
    /// Listens to nothing more; what was read last stays in view.
    void rest();
    void setComposited(bool value);
    void setLook(OverlayStyle style);

    [[nodiscard]] bool isShown() const { return isShown_; }
    [[nodiscard]] bool isComposited() const { return isComposited_; }
    [[nodiscard]] QString look() const { return rawString(style_); }
    /// "listening", "processing", "done" or "error".
    [[nodiscard]] QString phase() const;
    [[nodiscard]] QString stateLabel() const { return stateLabel_; }
    [[nodiscard]] QString profileTitle() const { return profileTitle_; }
    [[nodiscard]] QString sessionTag() const { return sessionTag_; }
    [[nodiscard]] bool hasApp() const { return app_.has_value(); }
    [[nodiscard]] QString appName() const;
    /// The name of an icon of the theme, or a file's path; empty for none.
    [[nodiscard]] QString appIcon() const;
    /// The live text, or the placeholder where there is none.
    [[nodiscard]] QString text() const { return text_; }
    [[nodiscard]] bool isLive() const { return isLive_; }
    [[nodiscard]] QString elapsed() const { return elapsed_; }
    /// The levels of the meter, oldest first: a preview's own, otherwise the microphone's.
    [[nodiscard]] QList<float> levels() const;

    /// Reads the clock again; called as often as a view wants to be right.
    Q_INVOKABLE void refreshElapsed();
    /// Milliseconds until the caret's next change, and whether it is lit now.
    Q_INVOKABLE int caretRest() const;
    Q_INVOKABLE bool isCaretLit() const;

Q_SIGNALS:
    void isShownChanged();
    void isCompositedChanged();
    void lookChanged();
    void stateChanged();
    void textChanged();
    void levelsChanged();
    void elapsedChanged();
    /// A new recording began: the entrance plays again.
    void restarted();

private:
    void refreshState();
    void refreshText();
    void setShown(bool value);

    Clock& clock_;
    QPointer<AppModel> model_;
    bool isShown_ = false;
    bool isComposited_ = true;
    OverlayStyle style_ = OverlayStyle::capsule;
    OverlayPhase phase_ = OverlayPhase::done;
    QString stateLabel_;
    QString profileTitle_;
    QString sessionTag_;
    std::optional<RunningApplication> app_;
    QString text_;
    bool isLive_ = false;
    QString elapsed_;
};

} // namespace velorin

/// The desktop around the views, told by the test what to answer.
#pragma once

#include "platform/Appearance.h"
#include "platform/FloatingWindows.h"
#include "platform/Listeners.h"
#include "platform/LoginItem.h"
#include "platform/Notifications.h"
#include "platform/TrayHosts.h"

#include <QStringList>

namespace velorin {

class FakeAppearance final : public Appearance {
public:
    std::optional<bool> dark = false;
    bool isStill = true;
    Listeners listeners;

    std::optional<bool> prefersDark() const override { return dark; }
    bool reducesMotion() const override { return isStill; }
    Subscription onChange(std::function<void()> action) override { return listeners.add(std::move(action)); }
};

class FakeFloatingWindows final : public FloatingWindows {
public:
    int adopted = 0;
    int raised = 0;
    bool composited = true;
    QList<QRect> shape;
    std::optional<QRect> targetFrame;
    QList<QRect> monitorsAsked;
    QMargins panels;
    Listeners listeners;

    void adopt(quint64) override { ++adopted; }
    void raise(quint64) override { ++raised; }
    void setShape(quint64, const QList<QRect>& value) override { shape = value; }
    bool isComposited() const override { return composited; }
    Subscription onCompositingChanged(std::function<void()> action) override {
        return listeners.add(std::move(action));
    }
    std::optional<QRect> frame(quint64) override { return targetFrame; }
    QRect workArea(const QRect& monitor) override {
        monitorsAsked.append(monitor);
        return monitor.marginsRemoved(panels);
    }
};

class FakeTrayHosts final : public TrayHosts {
public:
    bool isThere = false;
    Listeners listeners;

    bool isAnyThere() const override { return isThere; }
    Subscription onChange(std::function<void()> action) override { return listeners.add(std::move(action)); }
};

class FakeNotifications final : public Notifications {
public:
    QStringList calls;
    Notification last;
    bool isServed = true;
    Listeners listeners;

    void show(Notification notification) override {
        calls.append(QStringLiteral("show ") + notification.subject + QStringLiteral(": ") +
                     notification.text);
        last = std::move(notification);
    }
    void withdraw(const QString& subject) override { calls.append(QStringLiteral("withdraw ") + subject); }
    bool areShown() const override { return isServed; }
    Subscription onShownChanged(std::function<void()> action) override {
        return listeners.add(std::move(action));
    }
};

class FakeLoginItem final : public LoginItem {
public:
    bool isOn = false;

    bool isEnabled() const override { return isOn; }
    void setEnabled(bool value) override { isOn = value; }
};

} // namespace velorin

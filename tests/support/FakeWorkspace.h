/// Records what it was asked, and answers what the test set.
#pragma once

#include "platform/Workspace.h"

#include <QStringList>

#include <vector>

namespace velorin {

class FakeWorkspace final : public Workspace {
public:
    std::optional<RunningApplication> frontmost;
    qint64 currentProcess = 1;
    std::vector<RunningApplication> activated;
    bool comesToFront = true;
    std::optional<QString> title;
    int titlesRead = 0;
    bool ownWindowTakesText = true;
    QStringList textsOfOwnWindow;
    QStringList revealed;
    std::vector<QUrl> opened;
    int relaunches = 0;

    std::optional<RunningApplication> frontmostApplication() override { return frontmost; }
    bool isCurrent(const RunningApplication& application) const override {
        return application.processIdentifier == currentProcess;
    }
    void activate(const RunningApplication& application) override { activated.push_back(application); }
    bool awaitFrontmost(const RunningApplication&, std::chrono::milliseconds) override {
        return comesToFront;
    }
    std::optional<QString> windowTitle(const RunningApplication&) override {
        ++titlesRead;
        return title;
    }
    bool insertIntoOwnWindow(const QString& text) override {
        if (ownWindowTakesText)
            textsOfOwnWindow.append(text);
        return ownWindowTakesText;
    }
    void revealFile(const QString& path) override { revealed.append(path); }
    void openUrl(const QUrl& url) override { opened.push_back(url); }
    void relaunch() override { ++relaunches; }
};

} // namespace velorin

/// What a dictation asks of the text around the cursor of the application in front. A port: sessions are
/// tested without another application.
#pragma once

#include "delivery/SelectionService.h"
#include "platform/RunningApplication.h"

#include <QCoro/QCoroTask>

#include <optional>

namespace velorin {

class SelectionOperations {
public:
    virtual ~SelectionOperations() = default;

    /// What is selected in the application; nothing also when it cannot be told. Resumes on the main thread.
    virtual QCoro::Task<std::optional<SelectionSnapshot>> snapshot(RunningApplication application) = 0;

    /// Whether what was selected then is selected now, so that it can be replaced. Resumes on the main
    /// thread.
    virtual QCoro::Task<bool> isStillSelected(SelectionSnapshot snapshot) = 0;

    /// The text around the cursor, shortened. Main thread, with a deadline.
    virtual std::optional<QString> contextText() = 0;
};

/// Asks the application in front.
class LiveSelection final : public SelectionOperations {
public:
    explicit LiveSelection(SelectionService& service) : service_(service) {}

    QCoro::Task<std::optional<SelectionSnapshot>> snapshot(RunningApplication application) override {
        return service_.snapshot(std::move(application));
    }
    QCoro::Task<bool> isStillSelected(SelectionSnapshot snapshot) override {
        return service_.isStillSelected(std::move(snapshot));
    }
    std::optional<QString> contextText() override { return service_.contextText(); }

private:
    SelectionService& service_;
};

} // namespace velorin

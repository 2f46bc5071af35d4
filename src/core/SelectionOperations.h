/// What a dictation asks of the text around the cursor of the application in front. A port: sessions are
/// tested without another application.
#pragma once

#include "delivery/SelectionSnapshot.h"
#include "platform/RunningApplication.h"

#include <QCoro/QCoroTask>

#include <optional>

namespace velorin {

class SelectionOperations {
public:
    virtual ~SelectionOperations() = default;

    /// What is selected in the application; nothing also when it cannot be told. Resumes on the main thread.
    virtual QCoro::Task<std::optional<SelectionSnapshot>> snapshot(RunningApplication application) = 0;

    /// The text around the cursor, shortened. Main thread, with a deadline.
    virtual std::optional<QString> contextText() = 0;
};

/// Knows nothing of other applications: every selection is absent.
class NoSelection final : public SelectionOperations {
public:
    QCoro::Task<std::optional<SelectionSnapshot>> snapshot(RunningApplication application) override;
    std::optional<QString> contextText() override { return std::nullopt; }
};

} // namespace velorin

/// Finds out what is selected in the application in front, and later whether it still is.
///
///     SelectionService selections(accessibility, workspace, paste, trust);
///     const auto snapshot = co_await selections.snapshot(target);
///     …
///     if (co_await selections.isStillSelected(*snapshot)) …
///
/// Accessibility is asked first, then for chosen applications a copy is made in the user's stead. Whatever
/// goes wrong reads as the absence of a selection. Called on the main thread, where the tasks resume; what
/// waits for others runs on a thread of its own.
#pragma once

#include "delivery/PasteService.h"
#include "delivery/SelectionSnapshot.h"
#include "platform/Workspace.h"

#include <QCoro/QCoroTask>

#include <QThreadPool>

namespace velorin {

class SelectionService final {
public:
    /// The longest selection that is of use, in characters, and what is kept of the text around the cursor.
    static constexpr qsizetype longest = 12000;
    /// How far the tree below the focused element is looked through.
    static constexpr int deepest = 7;
    static constexpr int nodeBudget = 500;
    static constexpr std::chrono::milliseconds copyTimeout{150};
    /// What the application may cost us through accessibility, and in all. A quarter and half of a second are
    /// what a dictation can spend on it; a busy machine lets everybody wait some more.
    static constexpr std::chrono::milliseconds budget{200};
    static constexpr std::chrono::milliseconds wholeBudget{430};

    SelectionService(Accessibility& accessibility, Workspace& workspace, PasteService& paste, Trust& trust,
                     Clock& clock)
        : accessibility_(accessibility), workspace_(workspace), paste_(paste), trust_(trust), clock_(clock) {}

    /// `app` is the dictation's target.
    [[nodiscard]] QCoro::Task<std::optional<SelectionSnapshot>>
    snapshot(std::optional<RunningApplication> app);

    [[nodiscard]] QCoro::Task<bool> isStillSelected(SelectionSnapshot snapshot);

    /// The selection, or else the text of the focused element, cut to `longest`. Synchronous.
    [[nodiscard]] std::optional<QString> contextText();

private:
    using Moment = std::chrono::steady_clock::time_point;

    [[nodiscard]] QCoro::Task<std::optional<SelectionSnapshot>>
    copiedSnapshot(std::optional<RunningApplication> app, Moment end);

    Accessibility& accessibility_;
    Workspace& workspace_;
    PasteService& paste_;
    Trust& trust_;
    Clock& clock_;
    QThreadPool background_; ///< Last: its end waits for what runs.
};

} // namespace velorin

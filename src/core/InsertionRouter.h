/// Brings finished text to the cursor of another application. Main thread, synchronous.
#pragma once

#include "platform/RunningApplication.h"

#include <QString>

#include <optional>

namespace velorin {

class AppModel;
class PasteService;
struct Platform;

class InsertionRouter final {
public:
    InsertionRouter(AppModel& model, Platform& platform, PasteService& paste);

    /// Delivers the text into the target, or where there is none into what is in front; a failure shows as
    /// the model's error message.
    void insertText(const QString& text, const std::optional<RunningApplication>& target);

    /// Delivers the last dictation once more, into what is in front now.
    void pasteAgain();
    void insertIntoFrontmostApp(const std::optional<RunningApplication>& target);

private:
    void activateIfNeeded(const std::optional<RunningApplication>& application);

    AppModel& model_;
    Platform& platform_;
    PasteService& paste_;
};

} // namespace velorin

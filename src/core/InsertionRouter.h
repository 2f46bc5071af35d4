/// Brings finished text to the cursor of another application: which of the three roads (accessibility, keys,
/// clipboard) is tried in which order for which application, and what the user is told when all decline.
///
/// Main thread, synchronous. A window of our own is none of these roads' business: it takes the text
/// directly.
#pragma once

#include "platform/RunningApplication.h"

#include <QString>

#include <chrono>
#include <optional>

namespace velorin {

class AppModel;
class AXInsertService;
class PasteService;
class TypingService;
struct Platform;

class InsertionRouter final {
public:
    /// How long the window manager may take to bring the target to the front.
    static constexpr std::chrono::milliseconds activationDeadline{150};

    InsertionRouter(AppModel& model, Platform& platform, AXInsertService& accessibility,
                    TypingService& typing, PasteService& paste);

    /// Delivers the text into the target, or where there is none into what is in front; true when one of the
    /// roads took it. A failure shows as the model's error message, and the text becomes its undelivered one.
    /// Nothing is put into any other window than the target's.
    bool insertText(const QString& text, const std::optional<RunningApplication>& target);

    /// Delivers what could not be delivered, else the last text once more, into what is in front now.
    void pasteAgain();

    /// Why the clipboard must be tried first for this application; nothing when it need not.
    [[nodiscard]] static std::optional<QString>
    pasteReason(const std::optional<RunningApplication>& application);
    /// Whether it is a web page in a program's clothes; by its files, looked at afresh.
    [[nodiscard]] static bool isElectron(const RunningApplication& application);

private:
    using Target = std::optional<RunningApplication>;

    [[nodiscard]] bool bringToFront(const Target& application);
    [[nodiscard]] bool tryAll(const QString& text, const Target& application,
                              const std::optional<QString>& pasteReason);
    [[nodiscard]] bool tryDirect(const QString& text, const Target& application);
    [[nodiscard]] static bool delivered(const QString& path);
    bool undelivered(const QString& text, const QString& message);

    AppModel& model_;
    Platform& platform_;
    AXInsertService& accessibility_;
    TypingService& typing_;
    PasteService& paste_;
};

} // namespace velorin

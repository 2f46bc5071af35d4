/// With which keys an application pastes and copies, and what it reads when it pastes.
#pragma once

#include "platform/Pasteboard.h"
#include "platform/RunningApplication.h"

namespace velorin {

struct PasteKeys {
    enum class Paste { controlV, controlShiftV, controlShiftInsert, shiftInsert };

    Paste paste = Paste::controlV;
    PasteboardSelection source = PasteboardSelection::clipboard;
    /// Control and Insert copies nearly everywhere, where Control and C would interrupt what runs in a
    /// terminal; a terminal is sent nothing at all.
    bool canCopy = true;
};

/// None stands for an unknown application.
[[nodiscard]] PasteKeys pasteKeysOf(const std::optional<RunningApplication>& application);

} // namespace velorin

/// What was selected in the target when a dictation began, and how it was read. A value.
#pragma once

#include "platform/Accessibility.h"

#include <QString>

#include <optional>

namespace velorin {

enum class SelectionSource { accessibility, clipboard };

struct SelectionSnapshot {
    QString text;
    /// The element that holds the selection, and the one that had the keyboard; null for the clipboard.
    std::shared_ptr<AccessibleElement> element = nullptr;
    std::shared_ptr<AccessibleElement> focus = nullptr;
    SelectionSource source = SelectionSource::accessibility;
    std::optional<qint32> appPID = std::nullopt;

    bool operator==(const SelectionSnapshot&) const = default;
};

} // namespace velorin

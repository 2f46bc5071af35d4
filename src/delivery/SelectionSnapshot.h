/// What was selected in the target when a dictation began, and how it was read. A value.
#pragma once

#include <QString>

#include <optional>

namespace velorin {

enum class SelectionSource { accessibility, clipboard };

struct SelectionSnapshot {
    QString text;
    SelectionSource source = SelectionSource::accessibility;
    std::optional<qint32> appPID;

    bool operator==(const SelectionSnapshot&) const = default;
};

} // namespace velorin

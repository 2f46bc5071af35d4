/// The rows of the menu in the tray, as data: what stands in it, from top to bottom.
///
///     for (const auto& row : MenuRows::rows(model)) …
#pragma once

#include <QList>
#include <QString>

namespace velorin {
class AppModel;
}

namespace velorin::MenuRows {

enum class Kind {
    toggleDictation,
    divider,
    note, ///< Only to be read.
    settings,
    onboarding,
    checkForUpdates,
    quit
};

struct Row {
    Kind kind = Kind::divider;
    QString text;

    bool operator==(const Row&) const = default;
};

[[nodiscard]] QList<Row> rows(const AppModel& model);

[[nodiscard]] QString primaryActionTitle(const AppModel& model);
[[nodiscard]] QString contextSummary(const AppModel& model);

} // namespace velorin::MenuRows

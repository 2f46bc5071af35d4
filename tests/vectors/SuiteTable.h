/// The suites that this program can answer, by name.
///
/// Each subsystem adds its own in one function of one file (ShortcutSuites.cpp and its like), declared in
/// Suites.h and called in Suites.cpp:
///
///     void addShortcutSuites(SuiteTable& table) {
///         table.add(u"shortcut.keyName"_s, [](const QJsonObject& in) -> QJsonValue { return …; });
///         table.add(u"speech.level"_s, &level, {.absolute = 1e-4});
///     }
#pragma once

#include "Comparison.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <functional>
#include <map>

namespace velorin::vectors {

/// Answers one case from its "in". What an input means no suite can say is answered with `undefined`,
/// which is equal to nothing.
using Answer = std::function<QJsonValue(const QJsonObject& in)>;

struct Suite {
    Answer answer;
    Tolerance tolerance;
    Answer reference; ///< A slow and obvious second implementation; none for most.
};

class SuiteTable final {
public:
    void add(const QString& name, Answer answer, Tolerance tolerance = {});

    /// Gives a suite that was added a second implementation, which `--reference` runs in its place.
    void addReference(const QString& name, Answer reference);

    /// None for an unknown suite. "graphemes.X" is found as "cleaner.X".
    [[nodiscard]] const Suite* find(const QString& name) const;

private:
    std::map<QString, Suite> suites_;
};

} // namespace velorin::vectors

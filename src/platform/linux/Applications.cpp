#include "platform/linux/Applications.h"

#include "text/ForeignText.h"

#include <QFileInfo>
#include <QHash>

namespace velorin::Applications {

namespace {

QHash<QString, const Row*> makeIndex() {
    QHash<QString, const Row*> index;
    for (const auto& row : table()) {
        index.insert(QString::fromLatin1(row.bundleIdentifier).toLower(), &row);
        for (const auto& name : QString::fromLatin1(row.names).split(u' ', Qt::SkipEmptyParts))
            index.insert(name, &row);
    }
    return index;
}

const Row* find(const QString& name) {
    static const auto index = makeIndex();
    return name.isEmpty() ? nullptr : index.value(name.toLower(), nullptr);
}

Identity strangerCalled(const QString& name) {
    const auto fit = ForeignText::oneLine(name, ForeignText::longestName);
    return {fit, fit};
}

} // namespace

std::optional<Identity> identify(const Traces& traces) {
    const auto program = QFileInfo(traces.executable).fileName();
    // An application id is meant to tell applications apart; a program may be an interpreter of many.
    const QStringList names{traces.applicationId, traces.windowClass, traces.windowInstance, program};
    for (const auto& name : names)
        if (const auto* row = find(name))
            return Identity{QString::fromLatin1(row->bundleIdentifier), QString::fromLatin1(row->kin)};
    for (const auto& name : names)
        if (!name.isEmpty())
            return strangerCalled(name);
    return std::nullopt;
}

} // namespace velorin::Applications

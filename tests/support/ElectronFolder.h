/// A program's folder as an Electron application has it.
#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace velorin {

struct ElectronFolder {
    ElectronFolder() {
        QDir(folder.path()).mkpath(QStringLiteral("resources"));
        for (const auto& name : {"resources/app.asar", "chrome_100_percent.pak"}) {
            QFile file(folder.filePath(QString::fromLatin1(name)));
            (void)file.open(QIODevice::WriteOnly);
        }
    }

    [[nodiscard]] QString executable() const { return folder.filePath(QStringLiteral("program")); }

    QTemporaryDir folder;
};

} // namespace velorin

#include "platform/linux/Applications.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSet>
#include <QSettings>

using namespace Qt::Literals::StringLiterals;

namespace velorin::Applications {
namespace {

struct Known {
    QString bundleIdentifier;
    QString package;
    QString desktopFile;
};

/// What the table of Debian 12's packages says: application, package, name of the desktop file.
QList<Known> recorded() {
    QFile file(QStringLiteral(VELORIN_DEBIAN_DESKTOP_FILES));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QList<Known> all;
    for (const auto& line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
        const auto fields = line.split(u'\t');
        all.append({fields.value(0), fields.value(1), fields.value(2)});
    }
    return all;
}

QString named(const Traces& traces) {
    const auto identity = identify(traces);
    return identity ? identity->bundleIdentifier : QString();
}

TEST(DebianDesktopFiles, NameTheApplicationsOfTheTable) {
    QSet<QString> applications;
    for (const auto& known : recorded()) {
        EXPECT_EQ(named({.windowClass = {},
                         .windowInstance = {},
                         .applicationId = known.desktopFile,
                         .executable = {}}),
                  known.bundleIdentifier)
            << known.package.toStdString();
        applications.insert(known.bundleIdentifier);
    }
    EXPECT_GE(applications.size(), 100);
}

TEST(DebianDesktopFiles, OfInstalledPackagesNameTheSameApplicationByTheirWindows) {
    int installed = 0;
    for (const auto& known : recorded()) {
        const QString path = u"/usr/share/applications/"_s + known.desktopFile + u".desktop"_s;
        if (!QFile::exists(path))
            continue;
        ++installed;
        const QSettings entry(path, QSettings::IniFormat);
        const auto windowClass = entry.value(u"Desktop Entry/StartupWMClass"_s).toString();
        if (windowClass.isEmpty())
            continue;
        EXPECT_EQ(
            named({.windowClass = windowClass, .windowInstance = {}, .applicationId = {}, .executable = {}}),
            known.bundleIdentifier)
            << path.toStdString();
    }
    // The editor and the terminal that the tests need are installed wherever they run.
    EXPECT_GE(installed, 2);
}

} // namespace
} // namespace velorin::Applications

#include "platform/linux/desktop/Autostart.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

struct AutostartTest : testing::Test {
    QString entry() const {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    QString path() const { return home.filePath(u"autostart/dev.orrin.velorin.desktop"_s); }

    QTemporaryDir home;
    Autostart autostart{home.filePath(u"autostart"_s), u"/opt/my apps/$velorin"_s};
};

TEST_F(AutostartTest, IsOffUntilItIsWanted) { EXPECT_FALSE(autostart.isEnabled()); }

TEST_F(AutostartTest, IsAnEntryThatStartsTheProgram) {
    autostart.setEnabled(true);
    EXPECT_TRUE(autostart.isEnabled());
    EXPECT_TRUE(entry().startsWith(u"[Desktop Entry]\n"_s));
    EXPECT_TRUE(entry().contains(u"Exec=\"/opt/my apps/\\\\$velorin\"\n"_s)) << qPrintable(entry());
}

TEST_F(AutostartTest, GoesWhenItIsNotWantedAnyMore) {
    autostart.setEnabled(true);
    autostart.setEnabled(false);
    EXPECT_FALSE(autostart.isEnabled());
    EXPECT_FALSE(QFile::exists(path()));
}

TEST_F(AutostartTest, SeesThatADesktopHasSwitchedItOff) {
    autostart.setEnabled(true);
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("Hidden=true\n");
    file.close();
    EXPECT_FALSE(autostart.isEnabled());
}

TEST_F(AutostartTest, StaysOffWhereItCannotBeWritten) {
    Autostart nowhere(u"/proc/nowhere"_s, u"velorin"_s);
    nowhere.setEnabled(true);
    EXPECT_FALSE(nowhere.isEnabled());
}

} // namespace
} // namespace velorin

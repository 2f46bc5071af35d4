#include "platform/linux/DesktopFiles.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

class DesktopFilesTest : public testing::Test {
protected:
    void write(const QString& name, const QByteArray& text) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QTemporaryDir folder;
};

TEST_F(DesktopFilesTest, FindsAnApplicationByFileClassAndProgram) {
    write(u"org.example.Editor.desktop"_s,
          "[Desktop Entry]\nType=Application\nName=Editor\nName[de]=Schreiber\n"
          "Exec=/usr/bin/ed-gui --new %U\nStartupWMClass=EdGui\n"
          "[Desktop Action New]\nName=New window\n");
    DesktopFiles english({folder.path()}, u"en_GB"_s);
    for (const auto& name : {u"org.example.editor"_s, u"EDGUI"_s, u"ed-gui"_s}) {
        const auto entry = english.find({u"unknown"_s, QString(), name});
        ASSERT_TRUE(entry) << name.toStdString();
        EXPECT_EQ(entry->name, u"Editor"_s);
        EXPECT_EQ(entry->id, u"org.example.Editor"_s);
    }
    EXPECT_EQ(DesktopFiles({folder.path()}, u"de_AT"_s).find({u"edgui"_s})->name, u"Schreiber"_s);
}

TEST_F(DesktopFilesTest, SeesWhatIsInstalledLater) {
    DesktopFiles files({folder.path()}, u"en"_s);
    EXPECT_FALSE(files.find({u"later"_s}));
    write(u"later.desktop"_s, "[Desktop Entry]\nType=Application\nName=Later\nExec=later\n");
    EXPECT_TRUE(files.find({u"later"_s}));
}

TEST_F(DesktopFilesTest, PassesOverWhatIsNoApplication) {
    write(u"link.desktop"_s, "[Desktop Entry]\nType=Link\nName=Link\nURL=http://localhost\n");
    write(u"noise.desktop"_s, QByteArray("\0\xff[[[=\n=", 8));
    DesktopFiles files({folder.path(), folder.path() + u"/absent"_s}, u"en"_s);
    EXPECT_FALSE(files.find({u"link"_s, u"noise"_s}));
}

} // namespace
} // namespace velorin

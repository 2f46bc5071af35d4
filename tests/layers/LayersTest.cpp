#include "LayerRules.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin::layers {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

bool isCoreHeader(const QString& header) {
    return QFileInfo::exists(QStringLiteral(QTCORE_HEADERS) + u'/' + header);
}

Sources ownSources() {
    const QDir root(QStringLiteral(SOURCES));
    Sources sources;
    QDirIterator files(root.path(),
                       {u"*.h"_s, u"*.hpp"_s, u"*.cpp"_s, u"*.c"_s, u"*.cc"_s, u"*.ipp"_s, u"*.inl"_s},
                       QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
        sources[root.relativeFilePath(file.fileName())] = QString::fromUtf8(file.readAll());
    }
    return sources;
}

/// A small tree that keeps to the rules, with one file of each layer.
Sources cleanTree() {
    return {
        {u"text/Characters.h"_s, u"#include <QString>\n#include <unicode/uchar.h>\n"_s},
        {u"platform/Clock.h"_s,
         u"#include \"text/Characters.h\"\n#include <QCoro/QCoroTask>\n#include <vector>\n"_s},
        {u"platform/linux/x11/Tap.h"_s, u"#include \"platform/Clock.h\"\n#include <xcb/xcb.h>\n"_s},
        {u"platform/linux/pulse/Input.h"_s, u"#include \"platform/Clock.h\"\n"_s},
        {u"delivery/ContextProfile.h"_s, u"#include <QString>\n"_s},
        {u"delivery/PasteService.h"_s, u"#include \"ContextProfile.h\"\n#include \"platform/Clock.h\"\n"_s},
        {u"cleanup/RuleCleaner.h"_s, u"#include \"delivery/ContextProfile.h\"\n"_s},
        {u"shortcuts/Matcher.h"_s, u"#include \"platform/Clock.h\"\n"_s},
        {u"speech/Engine.h"_s, u"#include \"text/Characters.h\"\n"_s},
        {u"ai/Service.h"_s, u"#include \"delivery/ContextProfile.h\"\n#include <QNetworkReply>\n"_s},
        {u"core/AppModel.h"_s,
         u"#include \"cleanup/RuleCleaner.h\"\n#include \"delivery/PasteService.h\"\n"_s},
        {u"ui/Window.h"_s, u"#include \"core/AppModel.h\"\n#include <QWidget>\n"_s},
        {u"ui/Window.cpp"_s,
         u"#include \"ui/Window.h\"\n#include \"Window.moc\"\n#include \"moc_Window.cpp\"\n"_s},
        {u"app/Main.cpp"_s, u"#include \"ui/Window.h\"\n#include \"platform/linux/x11/Tap.h\"\n"_s}};
}

/// What is found in the small tree when one file holds a line more.
QStringList found(const QString& path, const QString& line) {
    auto sources = cleanTree();
    sources[path] += line + u'\n';
    return violations(sources, &isCoreHeader);
}

TEST(Layers, AreKeptByAllSources) {
    const auto sources = ownSources();
    EXPECT_EQ(violations(sources, &isCoreHeader).join(u'\n').toStdString(), "");
    std::size_t count = 0;
    for (const auto& [path, source] : sources)
        count += static_cast<std::size_t>(includes(source).size());
    EXPECT_GT(sources.size(), 60U) << "the sources were not found";
    EXPECT_GT(count, sources.size()) << "the includes were not found";
}

TEST(Layers, AcceptEveryArrowOfTheList) { EXPECT_THAT(violations(cleanTree(), &isCoreHeader), IsEmpty()); }

TEST(Layers, AreBrokenByAnArrowThatIsNotInTheList) {
    const std::pair<QString, QString> planted[] = {
        {u"text/Characters.h"_s, u"platform/Clock.h"_s},
        {u"platform/Clock.h"_s, u"platform/linux/x11/Tap.h"_s},
        {u"platform/Clock.h"_s, u"delivery/ContextProfile.h"_s},
        {u"platform/linux/x11/Tap.h"_s, u"core/AppModel.h"_s},
        {u"platform/linux/x11/Tap.h"_s, u"shortcuts/Matcher.h"_s},
        {u"cleanup/RuleCleaner.h"_s, u"delivery/PasteService.h"_s},
        {u"shortcuts/Matcher.h"_s, u"delivery/ContextProfile.h"_s},
        {u"shortcuts/Matcher.h"_s, u"speech/Engine.h"_s},
        {u"speech/Engine.h"_s, u"delivery/ContextProfile.h"_s},
        {u"ai/Service.h"_s, u"cleanup/RuleCleaner.h"_s},
        {u"delivery/PasteService.h"_s, u"core/AppModel.h"_s},
        {u"delivery/PasteService.h"_s, u"platform/linux/x11/Tap.h"_s},
        {u"core/AppModel.h"_s, u"ui/Window.h"_s},
        {u"core/AppModel.h"_s, u"platform/linux/pulse/Input.h"_s},
        {u"ui/Window.h"_s, u"platform/linux/pulse/Input.h"_s},
        {u"ui/Window.h"_s, u"app/Main.cpp"_s},
    };
    for (const auto& [path, include] : planted) {
        EXPECT_EQ(found(path, u"#include \""_s + include + u'"'),
                  QStringList(path + u": \""_s + include + u'"'));
        EXPECT_EQ(found(path, u"  #  include <"_s + include + u'>'),
                  QStringList(path + u": <"_s + include + u'>'));
    }
}

TEST(Layers, AreNotFooledByOtherSpellings) {
    EXPECT_EQ(found(u"core/AppModel.h"_s, u"#include \"../ui/Window.h\""_s).size(), 1);
    EXPECT_EQ(found(u"platform/Clock.h"_s, u"#include \"linux/x11/Tap.h\""_s).size(), 1);
    EXPECT_EQ(found(u"core/AppModel.h"_s, u"#include \"../../tests/Fake.h\""_s).size(), 1);
    EXPECT_EQ(found(u"core/AppModel.h"_s, u"#include <../tests/Fake.h>"_s).size(), 1);
    EXPECT_EQ(found(u"core/AppModel.h"_s, u"#include HEADER"_s).size(), 1);
    EXPECT_EQ(found(u"core/AppModel.h"_s, u"#include \"core/Absent.h\""_s).size(), 1);
    EXPECT_EQ(found(u"other/File.h"_s, u""_s), QStringList(u"other/File.h: in no known layer"_s));
    EXPECT_EQ(found(u"core/AppModel.h"_s, u"// #include \"ui/Window.h\""_s), QStringList());
}

TEST(Layers, KeepTheDesktopOutOfThePorts) {
    for (const auto& path : {u"platform/Clock.h"_s, u"text/Characters.h"_s}) {
        for (const auto& header : {u"QImage"_s, u"QGuiApplication"_s, u"QWidget"_s, u"QDBusMessage"_s,
                                   u"QNetworkReply"_s, u"QtGui/QImage"_s, u"QtDBus/QDBusMessage"_s,
                                   u"QtWidgets"_s, u"xcb/xcb.h"_s, u"X11/Xlib.h"_s, u"pulse/pulseaudio.h"_s})
            EXPECT_EQ(found(path, u"#include <"_s + header + u'>').size(), 1) << header.toStdString();
        for (const auto& header :
             {u"QString"_s, u"QtGlobal"_s, u"QtCore/QObject"_s, u"QLoggingCategory"_s, u"memory"_s})
            EXPECT_EQ(found(path, u"#include <"_s + header + u'>'), QStringList()) << header.toStdString();
    }
}

TEST(Layers, ReadIncludesInTheirOrder) {
    EXPECT_THAT(includes(u"#include \"a.h\" // why\n\t# include\t<b>\r\nint include;\n#include MACRO\n"_s),
                ElementsAre(u"\"a.h\""_s, u"<b>"_s, u"MACRO"_s));
}

} // namespace
} // namespace velorin::layers

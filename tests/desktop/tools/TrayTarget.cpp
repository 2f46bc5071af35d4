// tray-target: a program with an icon in the tray, by which the tools for menus are tried.
//
// Prints "ready" once its icon is there and the row of its menu that was chosen.
#include <QAction>
#include <QApplication>
#include <QIcon>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace {

void say(const QString& line) {
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}

} // namespace

int main(int count, char** arguments) {
    const QApplication application(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    QMenu menu;
    for (const auto& row : {u"First row"_s, u"Second row"_s}) {
        menu.addAction(row);
    }
    QObject::connect(&menu, &QMenu::triggered, &menu, [](QAction* row) { say(row->text()); });
    QPixmap square(22, 22);
    square.fill(Qt::red);
    QSystemTrayIcon icon{QIcon(square)};
    icon.setToolTip(u"A red square"_s);
    icon.setContextMenu(&menu);
    icon.show();
    say(u"ready"_s);
    return QApplication::exec();
}

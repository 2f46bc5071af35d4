#include "platform/linux/desktop/Autostart.h"

#include "platform/Log.h"
#include "platform/WholeFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// A program's path as a word of an Exec line: blanks and what shells read must not part it.
QString quoted(const QString& program) {
    QString word;
    for (const auto c : program) {
        if (u"\"`$\\"_s.contains(c))
            word += u"\\\\"_s; // the line itself reads a backslash once, the word a second time
        if (c == u'%' || c == u'\\')
            word += c == u'%' ? u"%"_s : u"\\"_s;
        word += c;
    }
    return u'"' + word + u'"';
}

} // namespace

Autostart::Autostart(QString folder, QString program)
    : folder_(std::move(folder)), program_(std::move(program)) {}

QString Autostart::standardFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/autostart"_s;
}

QString Autostart::runningProgram() { return QCoreApplication::applicationFilePath(); }

QString Autostart::path() const { return folder_ + u"/dev.orrin.velorin.desktop"_s; }

bool Autostart::isEnabled() const {
    QFile file(path());
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // Desktops switch an entry off by this word rather than delete it.
    const auto lines = QString::fromUtf8(file.readAll()).split(u'\n');
    return !lines.contains(u"Hidden=true"_s) && !lines.contains(u"X-GNOME-Autostart-enabled=false"_s);
}

void Autostart::setEnabled(bool value) {
    if (!value) {
        QFile::remove(path());
        return;
    }
    QDir().mkpath(folder_);
    const QString entry =
        u"[Desktop Entry]\nType=Application\nName=Velorin\nIcon=dev.orrin.velorin\nExec=%1\n"
        "Terminal=false\nX-GNOME-Autostart-enabled=true\n"_s.arg(quoted(program_));
    if (const auto written = replaceFile(path(), entry.toUtf8()); !written)
        qCWarning(permissionsLog).noquote() << u"the autostart entry cannot be written:"_s << written.error();
}

} // namespace velorin

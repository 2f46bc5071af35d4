#include "platform/linux/DesktopFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>
#include <QTextStream>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

/// The keys of the group "Desktop Entry".
QHash<QString, QString> readEntry(const QString& path) {
    QHash<QString, QString> values;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return values;
    QTextStream lines(&file);
    bool isInEntry = false;
    QString line;
    while (lines.readLineInto(&line)) {
        if (line.startsWith(u'[')) {
            if (isInEntry)
                break;
            isInEntry = line.startsWith("[Desktop Entry]"_L1);
        } else if (const auto equals = line.indexOf(u'='); isInEntry && equals > 0) {
            values.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
        }
    }
    return values;
}

QString programOf(const QString& command) {
    const auto words = command.split(u' ', Qt::SkipEmptyParts);
    return words.isEmpty() ? QString() : QFileInfo(words.first()).fileName();
}

} // namespace

DesktopFiles::DesktopFiles(QStringList folders, QString language)
    : folders_(std::move(folders)), language_(std::move(language)) {}

QStringList DesktopFiles::standardFolders() {
    return QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
}

QString DesktopFiles::userLanguage() { return QLocale::system().name(); }

std::optional<DesktopFiles::Entry> DesktopFiles::find(const QStringList& names) {
    refresh();
    for (const auto& name : names)
        if (const auto entry = byName_.constFind(name.toLower()); !name.isEmpty() && entry != byName_.cend())
            return *entry;
    return std::nullopt;
}

void DesktopFiles::refresh() {
    QHash<QString, QDateTime> now;
    for (const auto& folder : folders_)
        now.insert(folder, QFileInfo(folder).lastModified());
    if (now == readAt_)
        return;
    readAt_ = now;
    byName_.clear();
    for (const auto& folder : folders_)
        for (const auto& file : QDir(folder).entryInfoList({u"*.desktop"_s}, QDir::Files))
            add(file.filePath());
}

void DesktopFiles::add(const QString& path) {
    const auto values = readEntry(path);
    if (values.value(u"Type"_s) != "Application"_L1)
        return;
    const auto language = language_.section(u'_', 0, 0);
    Entry entry{QFileInfo(path).completeBaseName(), values.value(u"Name"_s),
                values.value(u"Icon"_s)};
    for (const auto& key : {language, language_})
        entry.name = values.value(u"Name["_s + key + u']', entry.name);
    // Window classes are the surest name; a program may be started by many files, so the first keeps it.
    const auto windowClass = values.value(u"StartupWMClass"_s).toLower();
    for (const auto& name : {entry.id.toLower(), windowClass, programOf(values.value(u"Exec"_s)).toLower()})
        if (!name.isEmpty() && !byName_.contains(name))
            byName_.insert(name, entry);
}

} // namespace velorin

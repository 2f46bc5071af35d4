/// The applications that are installed, as their desktop files tell: by the file's id, the class of their
/// windows, or the program that they start.
///
/// The files are read at the first question and again when a folder of theirs has changed. Main thread.
#pragma once

#include <QDateTime>
#include <QHash>
#include <QStringList>

#include <optional>

namespace velorin {

class DesktopFiles final {
public:
    struct Entry {
        QString id;   ///< The file's name without its ending.
        QString name; ///< In the user's language.
        QString icon; ///< A name in the theme, or a path; may be empty.
    };

    /// `folders`: the most important first. The language is one of a locale: "de" or "de_DE".
    explicit DesktopFiles(QStringList folders = standardFolders(), QString language = userLanguage());

    /// The first of these names under which an application is known, case aside.
    [[nodiscard]] std::optional<Entry> find(const QStringList& names);

    [[nodiscard]] static QStringList standardFolders();
    [[nodiscard]] static QString userLanguage();

private:
    void refresh();
    void add(const QString& path);

    QStringList folders_;
    QString language_;
    QHash<QString, QDateTime> readAt_;
    QHash<QString, Entry> byName_;
};

} // namespace velorin

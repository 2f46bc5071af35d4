/// The models on this machine: in the program's own folder, and in the user's.
///
/// The run time ends the process on some damaged files, so every file is checked against its recorded digest
/// before its path is given to anybody. A file that was checked is not read again until it changes.
///
///     if (const auto folder = store.verified(model)) load(*folder);
///
/// A publisher that gives no digest is trusted once: the digests of what was downloaded first are kept beside
/// it, in the file "digests", and hold from then on: also for what is downloaded in place of a damaged model,
/// since who answers under the address then may be somebody else. Removing the folder forgets them.
#pragma once

#include "platform/linux/recognition/ModelCatalog.h"

#include <map>
#include <mutex>
#include <optional>

namespace velorin {

class ModelStore final {
public:
    /// `programFolders` are looked into first, in their order.
    ModelStore(QStringList programFolders, QString userFolder);

    /// Where the models lie that come with the program: in the build tree as when installed, relative to the
    /// executable.
    [[nodiscard]] static QStringList programFolders();

    /// The folder in which all files of the model lie, by name and size; reads none of them. Any thread.
    [[nodiscard]] std::optional<QString> installed(const Model& model) const;

    /// The same, all digests checked. Reads the files: for background threads.
    [[nodiscard]] std::optional<QString> verified(const Model& model) const;

    /// The files of the model as they have to be: those without a digest in the table with the one of their
    /// first download, if there has been one, even when the model itself is damaged by now.
    [[nodiscard]] std::vector<ModelFile> expectedFiles(const Model& model) const;

    [[nodiscard]] const QString& userFolder() const { return userFolder_; }

    /// The SHA-256 of a file, in hexadecimal; empty when it cannot be read. For background threads.
    [[nodiscard]] static QByteArray digestOf(const QString& path);

    /// Keeps the digests of a folder's files for later: what `installed` and `verified` go by where the table
    /// of models has none.
    [[nodiscard]] static bool recordDigests(const QString& folder, const std::vector<ModelFile>& files);

private:
    [[nodiscard]] QStringList foldersOf(const Model& model) const;
    [[nodiscard]] bool isWhole(const QString& folder, const Model& model) const;
    [[nodiscard]] bool isKnownToBeDamaged(const QString& path, const ModelFile& file) const;
    [[nodiscard]] bool isIntact(const QString& path, const ModelFile& file) const;

    QStringList programFolders_;
    QString userFolder_;
    /// What is known of files by what they were when it was found out.
    mutable std::mutex mutex_;
    mutable std::map<QByteArray, bool> known_;
};

} // namespace velorin

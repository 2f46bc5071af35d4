#include "platform/WholeFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr auto unfinishedMark = ".velorin-unfinished-"_L1;
constexpr int digits = 16;
constexpr int mostLinks = 40;
/// Somebody who has so many has another trouble.
constexpr int mostSetAside = 10'000;

/// A name that is not there yet, for content that is not whole yet.
class UnfinishedFile final {
public:
    explicit UnfinishedFile(const QString& target)
        : name_(QFile::encodeName(target + unfinishedMark +
                                  QString::number(QRandomGenerator::system()->generate64(), digits)
                                      .rightJustified(digits, u'0'))),
          descriptor_(open(name_.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR)) {}
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile() {
        if (descriptor_ < 0)
            return;
        close(descriptor_);
        if (!isFinished_)
            unlink(name_.constData());
    }

    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }

    [[nodiscard]] bool write(const QByteArray& data) const {
        for (qsizetype done = 0; done < data.size();) {
            const auto count =
                ::write(descriptor_, data.constData() + done, static_cast<std::size_t>(data.size() - done));
            if (count < 0 && errno != EINTR)
                return false;
            done += std::max<qsizetype>(count, 0);
        }
        return true;
    }

    /// On the disk before it has the name: a power cut leaves no empty file.
    [[nodiscard]] bool finishAs(const QString& target) {
        isFinished_ = fsync(descriptor_) == 0 &&
                      std::rename(name_.constData(), QFile::encodeName(target).constData()) == 0;
        return isFinished_;
    }

private:
    QByteArray name_;
    int descriptor_;
    bool isFinished_ = false;
};

/// Where a link leads, also where there is nothing yet.
QString targetOf(const QString& path) {
    QFileInfo file(path);
    for (int links = 0; file.isSymLink() && links < mostLinks; ++links)
        file.setFile(file.symLinkTarget());
    return file.filePath();
}

/// The folder alone decides about a new name; a file that may not be written is not to be replaced either.
bool isProtected(const QString& target) {
    return faccessat(AT_FDCWD, QFile::encodeName(target).constData(), W_OK, AT_EACCESS) != 0 &&
           errno != ENOENT;
}

/// 0, or why not: EEXIST where something has that name.
int renameToNew(const QByteArray& from, const QByteArray& to) {
    if (renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL)
        return errno;
    // Some network file systems cannot promise it in one step.
    struct stat status {};
    if (lstat(to.constData(), &status) == 0)
        return EEXIST;
    return std::rename(from.constData(), to.constData()) == 0 ? 0 : errno;
}

} // namespace

tl::expected<void, QString> replaceFile(const QString& path, const QByteArray& data) {
    const QString target = targetOf(path);
    if (!isProtected(target)) {
        UnfinishedFile file(target);
        if (file.isOpen() && file.write(data) && file.finishAs(target))
            return {};
    }
    return tl::unexpected(QString::fromStdString(std::generic_category().message(errno)));
}

void removeUnfinished(const QString& path, std::chrono::seconds leastAge) {
    const QFileInfo target(targetOf(path));
    const QDateTime youngest = QDateTime::currentDateTime().addSecs(-leastAge.count());
    const QRegularExpression digitsOnly(u"^[0-9a-f]{%1}$"_s.arg(digits));
    const QString start = target.fileName() + unfinishedMark;
    for (const QFileInfo& entry : target.dir().entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks)) {
        const QString name = entry.fileName();
        if (name.startsWith(start) && digitsOnly.match(name.sliced(start.size())).hasMatch() &&
            entry.lastModified() <= youngest)
            QFile::remove(entry.filePath());
    }
}

bool setUnreadableAside(const QString& path) {
    QFileInfo file(path);
    file.setCaching(false);
    const QString start = file.path() + u'/' + file.completeBaseName() + u".unreadable."_s;
    int problem = EEXIST;
    for (int number = 1; problem == EEXIST && number <= mostSetAside; ++number) {
        const QString count = number == 1 ? QString() : QString::number(number) + u'.';
        problem = renameToNew(QFile::encodeName(path), QFile::encodeName(start + count + file.suffix()));
    }
    return problem == 0 || !file.exists();
}

} // namespace velorin

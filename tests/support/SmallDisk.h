/// A file system of a few bytes, in memory, that only the calling thread and what it starts can see; for
/// tests of what happens when a disk is full.
///
///     SmallDisk disk(QStringLiteral("64k"));
///     ASSERT_TRUE(disk.isThere());
///     … write below disk.path() …
///     disk.fill();                            // nothing more fits
///     disk.makeRoom();
#pragma once

#include <QByteArray>
#include <QFile>
#include <QStorageInfo>
#include <QTemporaryDir>
#include <QThreadPool>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace velorin {

class SmallDisk final {
public:
    /// The size in the words of mount.
    explicit SmallDisk(const QString& size) {
        // Threads that exist already would not see it.
        QThreadPool::globalInstance()->waitForDone();
        const QByteArray options = QStringLiteral("size=%1,mode=700").arg(size).toLatin1();
        const QByteArray place = QFile::encodeName(folder_.path());
        isThere_ = (unshare(CLONE_NEWNS) == 0 || becomeOurOwnSuperuser()) &&
                   mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                   mount("velorin", place.constData(), "tmpfs", 0, options.constData()) == 0;
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk() {
        if (isThere_)
            umount2(QFile::encodeName(folder_.path()).constData(), MNT_DETACH);
    }

    [[nodiscard]] bool isThere() const { return isThere_; }
    [[nodiscard]] QString path() const { return folder_.path(); }

    void fill() const {
        const int file = open(QFile::encodeName(stone()).constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        off_t size = 0;
        // In large steps, then to the last page.
        for (off_t step = 1 << 20; step >= 4096; step /= 2)
            while (posix_fallocate(file, size, step) == 0)
                size += step;
        close(file);
    }
    void makeRoom() const { QFile::remove(stone()); }

private:
    /// Whoever is not the superuser gets the rights that a mount needs in a user name space. One thread only.
    static bool becomeOurOwnSuperuser() {
        const QByteArray user = QByteArray::number(geteuid());
        const QByteArray group = QByteArray::number(getegid());
        const auto write = [](const QString& path, const QByteArray& text) {
            QFile file(path);
            return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
        };
        return unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 &&
               write(QStringLiteral("/proc/self/setgroups"), "deny") &&
               write(QStringLiteral("/proc/self/uid_map"), user + ' ' + user + " 1") &&
               write(QStringLiteral("/proc/self/gid_map"), group + ' ' + group + " 1");
    }

    [[nodiscard]] QString stone() const { return folder_.filePath(QStringLiteral("stone")); }

    QTemporaryDir folder_;
    bool isThere_ = false;
};

} // namespace velorin

// The disk is full, the files belong to somebody else, the folder has gone: a dictation goes on, the list is
// right in memory, and what is on the disk is whole.
#include "tests/core/ModelFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#include <csignal>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// No file of this process grows beyond a size while it lives.
class FullDisk final {
public:
    explicit FullDisk(qint64 bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit full = before_;
        full.rlim_cur = static_cast<rlim_t>(bytes);
        setrlimit(RLIMIT_FSIZE, &full);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    void (*handler_)(int);
};

/// The folder and its files may be read and not written while it lives, also by the superuser's tests.
class ReadOnlyFolder final {
public:
    explicit ReadOnlyFolder(const QString& path) : path_(path) {
        change(0555, 0444);
        if (geteuid() == 0)
            isNobody_ = seteuid(nobody) == 0;
    }
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;
    ~ReadOnlyFolder() {
        if (isNobody_ && seteuid(0) != 0)
            std::abort();
        change(0700, 0600);
    }

private:
    static constexpr uid_t nobody = 65534;

    void change(mode_t folder, mode_t file) const {
        for (const QFileInfo& entry : QDir(path_).entryInfoList(QDir::Files))
            chmod(QFile::encodeName(entry.filePath()).constData(), file);
        chmod(QFile::encodeName(path_).constData(), folder);
    }

    QString path_;
    bool isNobody_ = false;
};

class DiskTrouble : public ModelFixture {
protected:
    void record(const QString& text) {
        model->captureDictation(text, text, u"dictation"_s);
        model->recordHistory(text, text);
    }
    AppModel& startRecording() {
        start().setCaptureDictations(true);
        return *model;
    }
    QByteArray content(const QString& name) const {
        QFile file(home.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    qsizetype recordsOnDisk() const {
        const auto records = decodeDictationRecords(content(u"history.json"_s));
        return records ? records->size() : -1;
    }
    QList<QByteArray> linesOnDisk() const {
        auto lines = content(u"dictation-capture.jsonl"_s).split('\n');
        EXPECT_EQ(lines.takeLast(), QByteArray());
        return lines;
    }
};

TEST_F(DiskTrouble, AFullDiskLeavesTheOldHistory) {
    startRecording();
    record(u"first"_s);
    {
        const FullDisk full(QFileInfo(home.filePath(u"history.json"_s)).size() + 10);
        model->recordHistory(u"second"_s, QString(9000, u'x'));
    }
    EXPECT_EQ(model->history().size(), 2);
    EXPECT_FALSE(model->hasErrorMessage());
    EXPECT_EQ(recordsOnDisk(), 1);
    EXPECT_EQ(QDir(home.path()).entryList(QDir::Files).size(), 2) << "nothing is left behind";
    record(u"third"_s);
    EXPECT_EQ(recordsOnDisk(), 3);
}

TEST_F(DiskTrouble, AFullDiskLeavesNoHalfLine) {
    startRecording();
    record(u"first"_s);
    {
        const FullDisk full(QFileInfo(home.filePath(u"dictation-capture.jsonl"_s)).size() + 10);
        record(u"second"_s);
    }
    EXPECT_EQ(linesOnDisk().size(), 1);
    record(u"third"_s);
    ASSERT_EQ(linesOnDisk().size(), 2);
    for (const QByteArray& line : linesOnDisk())
        EXPECT_TRUE(QJsonDocument::fromJson(line).isObject()) << line.constData();
}

TEST_F(DiskTrouble, FilesThatMayNotBeWrittenStayAsTheyAre) {
    startRecording();
    record(u"first"_s);
    {
        const ReadOnlyFolder readOnly(home.path());
        record(u"second"_s);
        EXPECT_TRUE(waitUntilSettled());
        EXPECT_EQ(model->captureStatus(), u"1 dictation · 1 KB"_s);
    }
    EXPECT_EQ(model->history().size(), 2);
    EXPECT_FALSE(model->hasErrorMessage());
    EXPECT_EQ(recordsOnDisk(), 1);
    EXPECT_EQ(linesOnDisk().size(), 1);
}

TEST_F(DiskTrouble, AnUnreadableHistoryThatCannotBeKeptIsNotOverwritten) {
    const QByteArray damaged = "[{\"id\": ";
    QFile file(home.filePath(u"history.json"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(damaged);
    file.close();
    startRecording();
    {
        const ReadOnlyFolder readOnly(home.path());
        record(u"first"_s);
    }
    EXPECT_EQ(content(u"history.json"_s), damaged);
    record(u"second"_s);
    EXPECT_EQ(recordsOnDisk(), 2);
    EXPECT_EQ(content(u"history.unreadable.json"_s), damaged);
}

TEST_F(DiskTrouble, AFolderThatHasGoneIsMadeAgainForTheUserAlone) {
    startRecording();
    record(u"first"_s);
    ASSERT_TRUE(QDir(home.path()).removeRecursively());
    record(u"second"_s);
    EXPECT_EQ(recordsOnDisk(), 2);
    EXPECT_EQ(linesOnDisk().size(), 1);
    EXPECT_EQ(QFileInfo(home.path()).permissions() & 0x0077, QFile::Permissions());
}

TEST_F(DiskTrouble, AFolderInTheFilesPlaceInterruptsNothing) {
    ASSERT_TRUE(QDir(home.path()).mkpath(u"dictation-capture.jsonl/x"_s));
    ASSERT_TRUE(QDir(home.path()).mkpath(u"history.json/x"_s));
    startRecording();
    record(u"first"_s);
    EXPECT_EQ(model->history().size(), 1);
    EXPECT_FALSE(model->hasErrorMessage());
}

} // namespace
} // namespace velorin

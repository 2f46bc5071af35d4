#include "core/CaptureLog.h"
#include "tests/core/ModelFixture.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThreadPool>

#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

class CaptureLogOfTheModel : public ModelFixture {
protected:
    QList<QByteArray> lines() const {
        QFile file(home.filePath(u"dictation-capture.jsonl"_s));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        auto all = file.readAll().split('\n');
        all.removeAll(QByteArray());
        return all;
    }
    AppModel& startCapturing() {
        defaults.set(u"captureDictations"_s, true);
        return start();
    }
    QString status() {
        EXPECT_TRUE(waitUntilSettled());
        return model->captureStatus();
    }
    QString path() const { return home.filePath(u"dictation-capture.jsonl"_s); }
    void append(const QByteArray& tail) const {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(tail);
    }
};

TEST_F(CaptureLogOfTheModel, HoldsOneObjectALine) {
    startCapturing();
    model->setTargetApp(editor());
    model->captureDictation(u" new\nline "_s, u"Two\nlines "_s, u"dictation"_s);
    model->captureDictation(u"second"_s, QString(), u"edit"_s);
    ASSERT_EQ(lines().size(), 2);
    const QJsonObject first = QJsonDocument::fromJson(lines().first()).object();
    EXPECT_EQ(first, (QJsonObject{{u"at"_s, u"2023-11-14T22:13:20Z"_s},
                                  {u"app"_s, u"Mousepad"_s},
                                  {u"kind"_s, u"dictation"_s},
                                  {u"raw"_s, u"new\nline"_s},
                                  {u"cleaned"_s, u"Two\nlines "_s}}));
    EXPECT_EQ(QJsonDocument::fromJson(lines().last()).object()[u"cleaned"_s].toString(), QString());
    EXPECT_EQ(status(), u"2 dictations · 1 KB"_s);
}

TEST_F(CaptureLogOfTheModel, TakesNoLineWithoutRawText) {
    startCapturing();
    model->captureDictation(u" \n"_s, u"cleaned"_s, u"dictation"_s);
    EXPECT_TRUE(lines().isEmpty());
    EXPECT_EQ(status(), u"No capture file yet."_s);
}

TEST_F(CaptureLogOfTheModel, IsOffByDefault) {
    start();
    model->captureDictation(u"raw"_s, u"cleaned"_s, u"dictation"_s);
    EXPECT_TRUE(lines().isEmpty());
}

TEST_F(CaptureLogOfTheModel, TellsItsSizeInWholeKilobytesButNeverNone) {
    EXPECT_EQ(CaptureLog::statusText(QByteArray(99, 'x') + '\n'), u"1 dictation · 1 KB"_s);
    EXPECT_EQ(CaptureLog::statusText(QByteArray(1499, 'x') + "\n\n" + QByteArray(1499, 'x')),
              u"2 dictations · 2 KB"_s);
    EXPECT_EQ(CaptureLog::statusText(QByteArray("\xff\xfe\n")), u"0 dictations · 1 KB"_s);
    EXPECT_EQ(CaptureLog::statusText(std::nullopt), u"No capture file yet."_s);
}

TEST_F(CaptureLogOfTheModel, HalfALineOfAKilledProcessGoesAtTheStart) {
    startCapturing();
    model->captureDictation(u"one"_s, u"One."_s, u"dictation"_s);
    endModel();
    append(R"({"at":"2026)");
    startCapturing();
    EXPECT_EQ(lines().size(), 1);
    EXPECT_EQ(status(), u"1 dictation · 1 KB"_s);
    endModel();
    append(R"({"raw":"by hand"})");
    startCapturing();
    model->captureDictation(u"two"_s, u"Two."_s, u"dictation"_s);
    EXPECT_EQ(lines().size(), 3);
    EXPECT_EQ(lines()[1], R"({"raw":"by hand"})");
}

TEST_F(CaptureLogOfTheModel, HalfALineGoesBeforeTheFirstOfAProcessThatBeganWithoutTheLog) {
    append("{\"raw\":\"one\"}\n{\"at\":\"2026");
    start().setCaptureDictations(true);
    model->captureDictation(u"two"_s, u"Two."_s, u"dictation"_s);
    EXPECT_EQ(lines().size(), 2);
    EXPECT_EQ(QJsonDocument::fromJson(lines().last()).object()[u"raw"_s].toString(), u"two"_s);
}

/// When the file was read or changed last: nobody does either to a file that nobody touches.
std::pair<QDateTime, QDateTime> timesOf(const QString& path) {
    const QFileInfo file(path);
    return {file.lastRead(), file.lastModified()};
}

TEST_F(CaptureLogOfTheModel, IsNotTouchedWhileItIsOffUnlessAViewAsks) {
    append(R"({"raw":"half)");
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    for (const auto time : {QFileDevice::FileAccessTime, QFileDevice::FileModificationTime})
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addDays(-3), time));
    file.close();
    const auto before = timesOf(path());
    start();
    model->captureDictation(u"raw"_s, u"cleaned"_s, u"dictation"_s);
    EXPECT_EQ(status(), QString());
    EXPECT_EQ(timesOf(path()), before);
    model->refreshCaptureStatus();
    EXPECT_EQ(status(), u"1 dictation · 1 KB"_s);
}

TEST_F(CaptureLogOfTheModel, IsCountedAnewWhenAViewAsks) {
    startCapturing();
    model->captureDictation(u"one"_s, u"One."_s, u"dictation"_s);
    EXPECT_EQ(status(), u"1 dictation · 1 KB"_s);
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)); // an editor that writes into the same file
    file.write(QByteArray("x\n").repeated(3000));
    file.close();
    model->refreshCaptureStatus();
    EXPECT_EQ(status(), u"3000 dictations · 5 KB"_s);
}

TEST_F(CaptureLogOfTheModel, TellsNothingOfAFileThatWasClearedWhileItWasCounted) {
    startCapturing();
    append(QByteArray("x\n").repeated(1'000'000));
    model->refreshCaptureStatus();
    model->clearCaptureFile();
    EXPECT_EQ(status(), u"No capture file yet."_s);
}

TEST_F(CaptureLogOfTheModel, ACountThatRunsEndsWithTheModel) {
    startCapturing();
    append(QByteArray("x\n").repeated(1'000'000));
    model->refreshCaptureStatus();
    model.reset();
    EXPECT_TRUE(QThreadPool::globalInstance()->waitForDone(10'000));
}

TEST_F(CaptureLogOfTheModel, IsRevealedOnlyWhereItExists) {
    startCapturing();
    model->revealCaptureFile();
    EXPECT_TRUE(workspace.revealed.isEmpty());
    EXPECT_EQ(model->captureStatus(), u"No capture file yet."_s);
    model->captureDictation(u"raw"_s, u"cleaned"_s, u"dictation"_s);
    model->revealCaptureFile();
    EXPECT_EQ(workspace.revealed, QStringList{home.filePath(u"dictation-capture.jsonl"_s)});
    model->clearCaptureFile();
    EXPECT_TRUE(lines().isEmpty());
    EXPECT_EQ(status(), u"No capture file yet."_s);
}

TEST_F(CaptureLogOfTheModel, WhatWasCutOffWhileItWasSwitchedOffIsMendedBeforeTheNextLine) {
    QFile file(home.filePath(u"dictation-capture.jsonl"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{\"raw\": \"half a li");
    file.close();
    start();
    model->setCaptureDictations(true);
    dictate(u"whole"_s);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto lines = file.readAll().trimmed().split('\n');
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(QJsonDocument::fromJson(lines.front()).object()[u"raw"_s].toString(), u"whole"_s);
}

} // namespace
} // namespace velorin

#include "core/CaptureLog.h"
#include "tests/core/ModelFixture.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

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
        start().setCaptureDictations(true);
        return *model;
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
    EXPECT_EQ(model->captureStatus(), u"2 dictations · 1 KB"_s);
}

TEST_F(CaptureLogOfTheModel, TakesNoLineWithoutRawText) {
    startCapturing();
    model->captureDictation(u" \n"_s, u"cleaned"_s, u"dictation"_s);
    EXPECT_TRUE(lines().isEmpty());
    EXPECT_EQ(model->captureStatus(), u"No capture file yet."_s);
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
    const QString path = home.filePath(u"dictation-capture.jsonl"_s);
    const auto write = [&path](const QByteArray& tail) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append));
        file.write(tail);
    };
    write(R"({"at":"2026)");
    startCapturing();
    EXPECT_EQ(lines().size(), 1);
    endModel();
    write(R"({"raw":"by hand"})");
    startCapturing();
    model->captureDictation(u"two"_s, u"Two."_s, u"dictation"_s);
    EXPECT_EQ(lines().size(), 3);
    EXPECT_EQ(lines()[1], R"({"raw":"by hand"})");
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
    EXPECT_EQ(model->captureStatus(), u"No capture file yet."_s);
}

} // namespace
} // namespace velorin

#include "core/History.h"
#include "tests/core/ModelFixture.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

class HistoryOfTheModel : public ModelFixture {
protected:
    QString path() const { return home.filePath(u"history.json"_s); }
    QByteArray content() const {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void writeFile(const QByteArray& data) const {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(data);
    }
};

TEST_F(HistoryOfTheModel, KeepsTwoHundredAndDropsTheOldest) {
    start();
    for (int i = 0; i < 201; ++i)
        model->recordHistory(QString::number(i), QString::number(i));
    EXPECT_EQ(model->history().size(), 200);
    EXPECT_EQ(model->history().first().text, u"200"_s);
    EXPECT_EQ(model->history().last().text, u"1"_s);
    EXPECT_EQ(decodeDictationRecords(content())->size(), 200);
}

TEST_F(HistoryOfTheModel, TrimsTheTextsAndSkipsEmptyOnes) {
    start();
    model->recordHistory(u" raw "_s, u"\n text\n"_s);
    model->recordHistory(u"raw"_s, u" \n"_s);
    ASSERT_EQ(model->history().size(), 1);
    EXPECT_EQ(model->history().first().text, u"text"_s);
    EXPECT_EQ(model->history().first().raw, u"raw"_s);
    EXPECT_EQ(model->history().first().appName, u"Unknown app"_s);
}

TEST_F(HistoryOfTheModel, IsReadAtTheStartAndOnlyItsOwnerMayReadIt) {
    start();
    model->recordHistory(u"raw"_s, u"text"_s);
    const auto history = model->history();
    endModel();
    start();
    ASSERT_EQ(model->history().size(), 1);
    EXPECT_EQ(model->history().first().id, history.first().id);
    EXPECT_EQ(QFileInfo(path()).permissions() & 0x0077, QFile::Permissions());
}

TEST_F(HistoryOfTheModel, ADamagedFileStaysUntilTheNextDictation) {
    writeFile("[{\"id\": ");
    start();
    EXPECT_TRUE(model->history().isEmpty());
    EXPECT_EQ(content(), "[{\"id\": ");
    model->recordHistory(u"raw"_s, u"text"_s);
    EXPECT_EQ(decodeDictationRecords(content())->size(), 1);
    QFile kept(home.filePath(u"history.unreadable.json"_s));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "[{\"id\": ");
}

TEST_F(HistoryOfTheModel, AReadableFileIsKeptUnderNoOtherName) {
    start();
    model->recordHistory(u"raw"_s, u"text"_s);
    endModel();
    start();
    model->recordHistory(u"raw"_s, u"text"_s);
    EXPECT_FALSE(QFile::exists(home.filePath(u"history.unreadable.json"_s)));
}

TEST_F(HistoryOfTheModel, EachFileThatCannotBeReadIsKept) {
    for (const char* damaged : {"[1", "[2"}) {
        writeFile(damaged);
        start();
        model->recordHistory(u"raw"_s, u"text"_s);
        endModel();
    }
    QFile second(home.filePath(u"history.unreadable.2.json"_s));
    ASSERT_TRUE(second.open(QIODevice::ReadOnly));
    EXPECT_EQ(second.readAll(), "[2");
    EXPECT_TRUE(QFile::exists(home.filePath(u"history.unreadable.json"_s)));
}

TEST_F(HistoryOfTheModel, OfAVeryLongTextTheBeginningIsKept) {
    start();
    model->recordHistory(QString(100'000, u'r'), QString(50'000, u'\u00e9'));
    EXPECT_FALSE(model->history().first().cut) << "each has exactly what is allowed";
    EXPECT_FALSE(content().contains("cut"));
    model->recordHistory(u"raw"_s, u"x"_s + QString(50'000, u'\u00e9'));
    const auto record = model->history().first();
    EXPECT_TRUE(record.cut);
    EXPECT_EQ(record.text.toUtf8().size(), 99'999);
    EXPECT_EQ(record.raw, u"raw"_s);
    endModel();
    start();
    EXPECT_EQ(model->history().first(), record);
    model->recordHistory(u"raw"_s, u"another"_s);
    EXPECT_TRUE(decodeDictationRecords(content())->last().raw.has_value());
    EXPECT_TRUE((*decodeDictationRecords(content()))[1].cut);
}

TEST_F(HistoryOfTheModel, AReplyOfAnyLengthCanBeReadAtTheNextStart) {
    start();
    for (int i = 0; i < 200; ++i)
        model->recordHistory(QString(200'000, u'\u0001'), QString(200'000, QChar(i + 1)) + u'x');
    const auto inMemory = model->history();
    EXPECT_LT(QFileInfo(path()).size(), History::mostBytesWritten);
    EXPECT_GT(inMemory.size(), 10);
    endModel();
    start();
    EXPECT_EQ(model->history(), inMemory);
    EXPECT_FALSE(QFile::exists(home.filePath(u"history.unreadable.json"_s)));
}

TEST(DictationRecord, IsCutBetweenTwoCharacters) {
    const auto cut = [](const QString& text) {
        DictationRecord record;
        record.text = text;
        record.shorten();
        EXPECT_EQ(record.cut, record.text != text);
        return record.text.toUtf8();
    };
    const QByteArray start(99'998, 'x');
    EXPECT_EQ(cut(QString::fromLatin1(start) + u"e\u0301"_s), start) << "a letter and its mark";
    EXPECT_EQ(cut(QString::fromLatin1(start) + u"\U0001F44B"_s), start) << "two units";
    EXPECT_EQ(cut(QString::fromLatin1(start) + u"ab"_s), start + "ab");
    EXPECT_EQ(cut(QString::fromLatin1(start) + u" \nab"_s), start);
    EXPECT_EQ(cut(u'e' + QString(100'000, u'\u0301')).size(), 99'999) << "one character without end";
}

TEST_F(HistoryOfTheModel, AHostileFileIsAnEmptyHistoryWithoutAStall) {
    const QByteArray record =
        R"({"id":"5E2A4C0B-7B64-4E0C-9E31-0A6C0C3B7C11","date":"2026-01-02T03:04:05Z","appName":"A","text":"t"})";
    const QByteArray large = "[" + QByteArray(record + ",").repeated(1'000'000) + record + "]";
    const QByteArray many = "[" + QByteArray(record + ",").repeated(9'999) + record + "]";
    for (const QByteArray& hostile : {large, many, QByteArray(15 << 20, '[')}) {
        writeFile(hostile);
        QElapsedTimer watch;
        watch.start();
        start();
        // The sanitizers make it several times as slow as it is.
        EXPECT_LT(watch.elapsed(), 2500) << hostile.size();
        EXPECT_TRUE(model->history().isEmpty());
        endModel();
    }
}

TEST_F(HistoryOfTheModel, WhatAKilledProcessLeftIsTakenAway) {
    const QString leftover = home.filePath(u"history.json.velorin-unfinished-0123456789abcdef"_s);
    const QString another = home.filePath(u"history.json.backup"_s);
    for (const QString& path : {leftover, another}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(
            file.setFileTime(QDateTime::currentDateTime().addSecs(-600), QFileDevice::FileModificationTime));
    }
    start();
    EXPECT_FALSE(QFile::exists(leftover));
    EXPECT_TRUE(QFile::exists(another));
}

TEST_F(HistoryOfTheModel, OfTwoProcessesTheLastWriterWins) {
    ModelDesk other;
    other.folders.data = home.path();
    start();
    other.start();
    model->recordHistory(u"raw"_s, u"ours"_s);
    other.model->recordHistory(u"raw"_s, u"theirs"_s);
    EXPECT_EQ(decodeDictationRecords(content())->first().text, u"theirs"_s);
    model->recordHistory(u"raw"_s, u"ours again"_s);
    EXPECT_EQ(decodeDictationRecords(content())->size(), 2);
}

TEST_F(HistoryOfTheModel, OneRecordWithoutARequiredKeyMakesTheWholeUnreadable) {
    const QByteArray good =
        R"({"id":"5E2A4C0B-7B64-4E0C-9E31-0A6C0C3B7C11","date":"2026-01-02T03:04:05Z","appName":"A","text":"t"})";
    EXPECT_EQ(decodeDictationRecords("[" + good + "]")->first().raw, std::nullopt);
    EXPECT_FALSE(decodeDictationRecords("[" + good + R"(,{"id":"x"}])").has_value());
}

TEST(DictationRecordsEncoder, WritesTheSameTextWhateverItWroteBefore) {
    const auto whole = [](const QList<DictationRecord>& records) {
        QJsonArray array;
        for (const auto& record : records)
            array.append(record.toJson());
        return QJsonDocument(array).toJson(QJsonDocument::Indented);
    };
    const auto now = QDateTime::fromString(u"2024-05-06T07:08:09Z"_s, Qt::ISODate);
    QList<DictationRecord> records;
    DictationRecordsEncoder encoder;
    EXPECT_EQ(encoder.encode(records), whole(records));
    for (const QString& text : {u"one\nline, \"two\""_s, u"\u00e9\u65e5\U0001F44B"_s, u"[\n    {"_s}) {
        records.prepend(
            {.id = QUuid::createUuid(), .date = now, .appName = u"A"_s, .text = text, .raw = std::nullopt});
        EXPECT_EQ(encoder.encode(records), whole(records));
    }
    records.append(records.first()); // somebody else's doing
    records.last().text = u"changed"_s;
    EXPECT_EQ(encoder.encode(records), whole(records));
    records.removeFirst();
    EXPECT_EQ(encoder.encode(records), whole(records));
}

TEST(DecodeDictationRecords, LooksAtNoneOfTooMany) {
    EXPECT_TRUE(decodeDictationRecords("[]", 0).has_value());
    EXPECT_FALSE(decodeDictationRecords("[{}]", 0).has_value());
}

TEST_F(HistoryOfTheModel, DeletingSavesAlsoWhenTheRecordWasGone) {
    start();
    model->recordHistory(u"raw"_s, u"text"_s);
    const auto record = model->history().first();
    model->deleteHistory(record);
    EXPECT_TRUE(model->history().isEmpty());
    QFile::remove(path());
    model->deleteHistory(record);
    EXPECT_EQ(decodeDictationRecords(content())->size(), 0);
}

TEST_F(HistoryOfTheModel, ClearingLeavesAnEmptyListInTheFile) {
    start();
    model->recordHistory(u"raw"_s, u"text"_s);
    model->clearHistory();
    EXPECT_EQ(decodeDictationRecords(content())->size(), 0);
}

TEST_F(HistoryOfTheModel, SwitchedOffKeepsWhatIsThereAndTakesNothingNew) {
    start();
    model->recordHistory(u"raw"_s, u"text"_s);
    model->setHistoryEnabled(false);
    model->recordHistory(u"raw"_s, u"more"_s);
    EXPECT_EQ(model->history().size(), 1);
}

TEST_F(HistoryOfTheModel, AFolderThatCannotBeWrittenInterruptsNothing) {
    folders.data = u"/proc/velorin"_s;
    start();
    model->recordHistory(u"raw"_s, u"text"_s);
    EXPECT_EQ(model->history().size(), 1);
    EXPECT_FALSE(model->hasErrorMessage());
}

} // namespace
} // namespace velorin

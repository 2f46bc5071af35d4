#include "platform/linux/desktop/JsonUserDefaults.h"

#include "tests/support/LogCapture.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

class JsonUserDefaultsFile : public testing::Test {
protected:
    QString path() const { return home_.filePath(u"velorin/preferences.json"_s); }
    QByteArray content() const {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void writeFile(const QByteArray& data) const {
        QDir().mkpath(QFileInfo(path()).path());
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(data);
    }

    LogCapture log_;
    QTemporaryDir home_;
};

TEST_F(JsonUserDefaultsFile, GivesValuesBackWithTheirOwnTypes) {
    const QJsonObject values{{u"boolean"_s, true},
                             {u"number"_s, 63},
                             {u"text"_s, u"true"_s},
                             {u"list"_s, QJsonArray{u"a"_s, u"b"_s}},
                             {u"map"_s, QJsonObject{{u"k"_s, u"v"_s}}}};
    {
        JsonUserDefaults defaults(path());
        for (auto value = values.begin(); value != values.end(); ++value)
            defaults.set(value.key(), value.value());
    }
    const JsonUserDefaults again(path());
    for (auto value = values.begin(); value != values.end(); ++value)
        EXPECT_EQ(again.object(value.key()), QJsonValue(value.value()));
    EXPECT_EQ(again.object(u"absent"_s), std::nullopt);
}

TEST_F(JsonUserDefaultsFile, IsOnTheDiskAfterEachChangeAndReadableByItsOwnerOnly) {
    JsonUserDefaults defaults(path());
    defaults.set(u"a"_s, 1);
    EXPECT_EQ(QJsonDocument::fromJson(content()).object(), (QJsonObject{{u"a"_s, 1}}));
    EXPECT_EQ(QFileInfo(path()).permissions() & 0x0077, QFile::Permissions());
    defaults.remove(u"a"_s);
    EXPECT_EQ(QJsonDocument::fromJson(content()).object(), QJsonObject());
}

TEST_F(JsonUserDefaultsFile, WritesAGroupOfChangesOnce) {
    JsonUserDefaults defaults(path());
    {
        const auto outer = defaults.groupChanges();
        {
            const auto inner = defaults.groupChanges();
            defaults.set(u"a"_s, 1);
        }
        defaults.set(u"b"_s, 2);
        EXPECT_FALSE(QFile::exists(path()));
    }
    EXPECT_EQ(QJsonDocument::fromJson(content()).object(), (QJsonObject{{u"a"_s, 1}, {u"b"_s, 2}}));
}

TEST_F(JsonUserDefaultsFile, KeepsAFileThatItCannotReadBesideTheNewOne) {
    writeFile("{\"a\": 1");
    JsonUserDefaults defaults(path());
    EXPECT_EQ(defaults.object(u"a"_s), std::nullopt);
    EXPECT_EQ(content(), "{\"a\": 1") << "reading changes nothing";
    EXPECT_EQ(log_.lines().filter(u"cannot be read"_s).size(), 1);
    defaults.set(u"b"_s, 2);
    QFile kept(home_.filePath(u"velorin/preferences.unreadable.json"_s));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "{\"a\": 1");
    EXPECT_EQ(QJsonDocument::fromJson(content()).object(), (QJsonObject{{u"b"_s, 2}}));
}

TEST_F(JsonUserDefaultsFile, KeepsEachFileThatItCannotRead) {
    for (const char* content : {"{1", "{2"}) {
        writeFile(content);
        JsonUserDefaults(path()).set(u"b"_s, 2);
    }
    EXPECT_TRUE(QFile::exists(home_.filePath(u"velorin/preferences.unreadable.json"_s)));
    QFile second(home_.filePath(u"velorin/preferences.unreadable.2.json"_s));
    ASSERT_TRUE(second.open(QIODevice::ReadOnly));
    EXPECT_EQ(second.readAll(), "{2");
}

TEST_F(JsonUserDefaultsFile, LosesWhatAKilledProcessLeftBesideItAndNothingElse) {
    writeFile("{}");
    const QString folder = home_.filePath(u"velorin/"_s);
    const QString leftover = folder + u"preferences.json.velorin-unfinished-0123456789abcdef"_s;
    const QString another = folder + u"preferences.json.backup"_s;
    for (const QString& name : {leftover, another}) {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(
            file.setFileTime(QDateTime::currentDateTime().addSecs(-600), QFileDevice::FileModificationTime));
    }
    JsonUserDefaults defaults(path());
    EXPECT_FALSE(QFile::exists(leftover));
    EXPECT_TRUE(QFile::exists(another));
}

TEST_F(JsonUserDefaultsFile, ThatCannotBeWrittenIsLoggedAndTriedAgainAtTheNextChange) {
    JsonUserDefaults defaults(u"/proc/velorin/preferences.json"_s);
    defaults.set(u"a"_s, 1);
    EXPECT_EQ(defaults.object(u"a"_s), QJsonValue(1));
    EXPECT_EQ(log_.lines().filter(u"cannot be written"_s).size(), 1);
    defaults.set(u"a"_s, 2);
    EXPECT_EQ(log_.lines().filter(u"cannot be written"_s).size(), 2);
}

} // namespace
} // namespace velorin

#include "platform/linux/recognition/ModelStore.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

struct ModelStoreTest : testing::Test {
    QTemporaryDir folder;
    QString program = folder.filePath(u"program"_s);
    QString user = folder.filePath(u"user"_s);
    ModelStore store{{folder.filePath(u"nowhere"_s), program}, user};
    Model model;

    ModelStoreTest() {
        model.id = u"a-model"_s;
        for (const QByteArray& content : {QByteArray("first"), QByteArray("second")})
            model.files.push_back({QString::fromUtf8(content),
                                   {},
                                   content.size(),
                                   QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex()});
    }

    void write(const QString& where, const QString& name, const QByteArray& content) const {
        ASSERT_TRUE(QDir().mkpath(where + u"/a-model"_s));
        QFile file(where + u"/a-model/"_s + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    void writeAll(const QString& where) const {
        for (const ModelFile& file : model.files)
            write(where, file.name, file.name.toUtf8());
    }
};

TEST_F(ModelStoreTest, FindsAModelWithTheProgramFirst) {
    EXPECT_EQ(store.installed(model), std::nullopt);
    writeAll(user);
    EXPECT_EQ(store.installed(model), QString(user + u"/a-model"_s));
    writeAll(program);
    EXPECT_EQ(store.verified(model), QString(program + u"/a-model"_s));
}

TEST_F(ModelStoreTest, DoesNotTakeHalfAModel) {
    write(program, u"first"_s, "first");
    EXPECT_EQ(store.installed(model), std::nullopt);
    write(program, u"second"_s, "secon");
    EXPECT_EQ(store.installed(model), std::nullopt);
    EXPECT_EQ(store.verified(model), std::nullopt);
    write(program, u"second"_s, {});
    EXPECT_EQ(store.installed(model), std::nullopt);
}

TEST_F(ModelStoreTest, FindsDamageThatLeftTheSize) {
    writeAll(program);
    EXPECT_TRUE(store.verified(model));
    write(program, u"second"_s, "sEcond");
    EXPECT_EQ(store.verified(model), std::nullopt);
    write(program, u"second"_s, "second");
    EXPECT_TRUE(store.verified(model));
}

TEST_F(ModelStoreTest, FindsTheModelsOfThisBuild) {
    const ModelStore ours(ModelStore::programFolders(), user);
    for (const Model& row : ModelCatalog::models()) {
        EXPECT_TRUE(!row.comesWithProgram || ours.verified(row)) << row.id.toStdString();
    }
}

TEST(ModelCatalog, HasAModelForEachKindOfEnglish) {
    for (const QString& locale : {u"en-US"_s, u"en-GB"_s, u"en-IN"_s})
        EXPECT_EQ(ModelCatalog::modelFor(locale)->id, u"moonshine-tiny-en"_s);
    EXPECT_EQ(ModelCatalog::modelFor(u"xx-XX"_s), nullptr);
    EXPECT_FALSE(ModelCatalog::isSpaced(u"ja-JP"_s));
    EXPECT_TRUE(ModelCatalog::isSpaced(u"de-DE"_s));
}

} // namespace velorin

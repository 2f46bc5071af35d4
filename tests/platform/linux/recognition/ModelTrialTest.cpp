// Models whose publisher gives no digest are loaded once by a process that may die of them.
#include "platform/linux/recognition/ModelInstallation.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

struct ModelTrialTest : testing::TestWithParam<QString> {
    QTemporaryDir folder;

    static QString partOf(const Model& model, const QString& name) {
        return *ModelStore(ModelStore::programFolders(), {}).installed(model) + u'/' + name;
    }

    static const Model& model() {
        for (const Model& row : ModelCatalog::models())
            if (row.id == GetParam())
                return row;
        ADD_FAILURE() << "no such model";
        return ModelCatalog::voiceActivity();
    }

    /// Fills the folder with the files of the model, each with the given content.
    void fill(const QByteArray& content) {
        for (const ModelFile& file : model().files)
            write(file.name, content);
    }

    void write(const QString& name, const QByteArray& content) {
        QDir().mkpath(QFileInfo(folder.filePath(name)).path());
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    bool loads() { return ModelInstallation::loadsInAnotherProcess(folder.path(), model()); }

    /// A model that the run time's own engine reads well, and that is none of speech to text.
    static QByteArray modelOfAnotherKind() {
        QFile file(partOf(ModelCatalog::voiceActivity(), ModelCatalog::voiceActivity().files.front().name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
};

} // namespace

TEST_P(ModelTrialTest, RefusesAModelOfAnotherKind) {
    fill(modelOfAnotherKind());
    EXPECT_FALSE(loads());
}

TEST_P(ModelTrialTest, RefusesRandomBytes) {
    QByteArray noise;
    for (int i = 0; i < 200'000; ++i)
        noise.append(static_cast<char>((i * 7919) >> 5));
    fill(noise);
    EXPECT_FALSE(loads());
}

TEST_P(ModelTrialTest, RefusesEmptyFiles) {
    fill({});
    EXPECT_FALSE(loads());
}

TEST_P(ModelTrialTest, RefusesAnEmptyFolder) { EXPECT_FALSE(loads()); }

INSTANTIATE_TEST_SUITE_P(Of, ModelTrialTest,
                         testing::Values(u"moonshine-tiny-en"_s, u"parakeet-tdt-0.6b-v3"_s,
                                         u"sense-voice-2024-07-17"_s, u"whisper-small"_s));

TEST(ModelTrial, AcceptsAGoodModel) {
    const Model& model = *ModelCatalog::modelFor(u"en-US"_s);
    const auto folder = ModelStore(ModelStore::programFolders(), {}).installed(model);
    ASSERT_TRUE(folder);
    EXPECT_TRUE(ModelInstallation::loadsInAnotherProcess(*folder, model));
}

TEST(ModelTrial, RefusesAGoodModelWithTokensOfRandomBytes) {
    const Model& model = *ModelCatalog::modelFor(u"en-US"_s);
    const auto source = ModelStore(ModelStore::programFolders(), {}).installed(model);
    ASSERT_TRUE(source);
    const QTemporaryDir copy;
    for (const QString& name : QDir(*source).entryList(QDir::Files))
        ASSERT_TRUE(QFile::copy(*source + u'/' + name, copy.filePath(name)));
    for (const QString& name : QDir(copy.path()).entryList({u"token*"_s}, QDir::Files)) {
        QFile file(copy.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(QByteArray(5000, '\xa5'));
    }
    EXPECT_FALSE(ModelInstallation::loadsInAnotherProcess(copy.path(), model));
}

} // namespace velorin

/// The models that Velorin knows: a table, a row a model. What is not in it never reaches the run time.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <span>
#include <vector>

namespace velorin {

/// Which of the run time's ways of loading and decoding a model takes.
enum class ModelFamily { moonshine, transducer, senseVoice, whisper, voiceActivity };

struct ModelFile {
    QString name;
    /// Where it can be had; empty when it comes with the program only.
    QString address;
    /// In bytes; about so many where there is no digest.
    qint64 size = 0;
    /// SHA-256 in hexadecimal; empty where the publisher gives none.
    QByteArray digest;
};

struct Model {
    QString id; ///< Also the name of its folder.
    /// Language codes as in "en"; none for voice activity.
    QStringList languages;
    ModelFamily family = ModelFamily::moonshine;
    std::vector<ModelFile> files;
    QString licence;
    int memoryMegabytes = 0;
    /// For the user: what distinguishes it.
    QString remark;
    bool comesWithProgram = false;

    [[nodiscard]] qint64 size() const;
    [[nodiscard]] bool canBeDownloaded() const;
};

namespace ModelCatalog {

[[nodiscard]] std::span<const Model> models();

/// The models that serve a locale as in "en-GB", the one to take by itself first.
[[nodiscard]] std::vector<const Model*> modelsFor(const QString& localeIdentifier);

/// The first of them; null where there is none.
[[nodiscard]] const Model* modelFor(const QString& localeIdentifier);

[[nodiscard]] const Model& voiceActivity();

/// Whether words of the language are parted by spaces.
[[nodiscard]] bool isSpaced(const QString& localeIdentifier);

/// The language alone, as in "en".
[[nodiscard]] QString languageOf(const QString& localeIdentifier);

} // namespace ModelCatalog

} // namespace velorin

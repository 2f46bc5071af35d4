/// Brings one model to this machine: downloads its files, checks them, and puts them in place by one rename.
///
/// What has come so far is kept in the folder "incomplete" beside the models, and a later download goes on
/// there, also after the process was killed. Nobody ever sees half a model.
///
///     ModelDownload download(network, store, model);
///     if (auto brought = co_await download.run(onProgress); !brought)
///         show(brought.error().description);
///
/// Main thread. `cancel` ends it soon, with an error; what has come stays.
#pragma once

#include "platform/SpeechRecognition.h"
#include "platform/linux/recognition/ModelStore.h"

#include <QLockFile>
#include <QNetworkAccessManager>
#include <QPointer>

#include <chrono>

namespace velorin {

class ModelDownload final {
public:
    /// When a server is taken for silent, and what a server has to bring to count as one that still sends.
    struct Patience {
        std::chrono::milliseconds silence{30'000};
        std::chrono::milliseconds period{60'000};
        qint64 leastInPeriod = 64 * 1024;
        std::chrono::milliseconds betweenLooksAtOthers{500};
    };
    /// Loads the model in this folder on trial, where it may end a process, and tells whether it can be
    /// loaded.
    using Trial = std::function<bool(const QString& folder, const Model& model)>;

    ModelDownload(QNetworkAccessManager& network, const ModelStore& store, const Model& model, Trial trial,
                  Patience patience);
    ModelDownload(const ModelDownload&) = delete;
    ModelDownload& operator=(const ModelDownload&) = delete;
    ~ModelDownload();

    [[nodiscard]] RecognitionTask<void> run(AssetInstallationRequest::Progress progress);
    void cancel();

    /// Where the files of a model lie until all are there.
    [[nodiscard]] static QString incompleteFolder(const ModelStore& store, const Model& model);

private:
    using Outcome = tl::expected<void, RecognitionError>;
    using Alive = std::weak_ptr<ModelDownload*>;

    RecognitionTask<void> waitForTurn(QLockFile* lock);
    RecognitionTask<void> bring(const ModelFile* file);
    RecognitionTask<void> fetch(const ModelFile* file, QString path);
    QNetworkReply* request(const ModelFile& file, qint64 from, const QByteArray& validator);
    RecognitionTask<void> putInPlace();
    [[nodiscard]] bool hasSpace() const;
    [[nodiscard]] bool keepsDigests() const;
    void tell(qint64 ofThisFile) const;

    QNetworkAccessManager& network_;
    const ModelStore& store_;
    const Model& model_;
    std::vector<ModelFile> files_; ///< As they have to be.
    Trial trial_;
    Patience patience_;
    AssetInstallationRequest::Progress progress_;
    qint64 filesBefore_ = 0; ///< Bytes of the files that are complete.
    bool isCancelled_ = false;
    QPointer<QNetworkReply> reply_;
    std::shared_ptr<ModelDownload*> alive_ = std::make_shared<ModelDownload*>(this);
};

} // namespace velorin

#include "platform/linux/recognition/ModelDownload.h"

#include "platform/Background.h"
#include "platform/Log.h"
#include "platform/PrivateFolder.h"
#include "platform/linux/recognition/FileReceiver.h"
#include "platform/linux/recognition/ModelFolder.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QNetworkReply>
#include <QStorageInfo>
#include <QTimer>

#include <algorithm>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Left free for everybody else.
constexpr qint64 reserve = 50'000'000;
/// By how much a file may exceed the size that the table has for about right: a twentieth, and a little.
constexpr qint64 slackPart = 20;
constexpr qint64 slackAlways = 64 * 1024;

QString tr(const char* text) { return QCoreApplication::translate("ModelDownload", text); }

tl::unexpected<RecognitionError> failure(const char* text) {
    return tl::unexpected(RecognitionError{tr(text)});
}

constexpr auto notStorable = "The speech recognition model cannot be stored in your home folder.";
constexpr auto notEnoughSpace = "There is not enough space on the disk for the speech recognition model.";

tl::unexpected<RecognitionError> failure(ReceiveProblem problem) {
    switch (problem) {
    case ReceiveProblem::refused:
        return failure("The speech recognition model is not offered for download any more.");
    case ReceiveProblem::broken:
        return failure(
            "The download of the speech recognition model was interrupted. Please check the network; it "
            "goes on where it stopped.");
    case ReceiveProblem::tooSlow:
        return failure(
            "The download of the speech recognition model is too slow. It goes on where it stopped.");
    case ReceiveProblem::tooMuch:
        return failure("The download of the speech recognition model brought something else.");
    case ReceiveProblem::diskFull:
        return failure(notEnoughSpace);
    case ReceiveProblem::cancelled:
        break;
    }
    return failure("The download of the speech recognition model was cancelled.");
}

qint64 mostOf(const ModelFile& file) {
    return file.digest.isEmpty() ? file.size + file.size / slackPart + slackAlways : file.size;
}

/// What tells one version of a file on the server from another, kept beside its first part.
QByteArray readValidator(const QString& path) {
    QFile file(ModelFolder::validatorOf(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void keepValidator(const QString& path, const QNetworkReply& reply) {
    const QByteArray tag = reply.rawHeader("ETag");
    QFile file(ModelFolder::validatorOf(path));
    if (file.open(QIODevice::WriteOnly))
        file.write(tag.isEmpty() || tag.startsWith("W/") ? reply.rawHeader("Last-Modified") : tag);
}

bool syncFolder(const QString& folder) {
    const int descriptor = open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isSynced = descriptor >= 0 && syncfs(descriptor) == 0;
    if (descriptor >= 0)
        close(descriptor);
    return isSynced;
}

} // namespace

ModelDownload::ModelDownload(QNetworkAccessManager& network, const ModelStore& store, const Model& model,
                             Trial trial, Patience patience)
    : network_(network), store_(store), model_(model), trial_(std::move(trial)), patience_(patience) {}

ModelDownload::~ModelDownload() { alive_.reset(); }

QString ModelDownload::incompleteFolder(const ModelStore& store, const Model& model) {
    return store.userFolder() + u"/incomplete/"_s + model.id;
}

void ModelDownload::cancel() {
    isCancelled_ = true;
    if (reply_)
        reply_->abort();
}

RecognitionTask<void> ModelDownload::run(AssetInstallationRequest::Progress progress) {
    const Alive alive = alive_;
    progress_ = std::move(progress);
    const QString folder = incompleteFolder(store_, model_);
    if (!makePrivateFolder(folder))
        co_return failure(notStorable);
    QLockFile lock(folder + u".lock"_s);
    lock.setStaleLockTime(0); // Only the end of its process makes a lock stale.
    if (auto turn = co_await waitForTurn(&lock); !turn)
        co_return turn;
    // Another process may have brought it meanwhile.
    if (store_.installed(model_))
        co_return Outcome{};
    files_ = store_.expectedFiles(model_);
    if (!hasSpace())
        co_return failure(notEnoughSpace);
    for (const ModelFile& file : files_) {
        auto brought = co_await bring(&file);
        if (alive.expired() || !brought)
            co_return brought;
        filesBefore_ += QFileInfo(folder + u'/' + file.name).size();
    }
    co_return co_await putInPlace();
}

RecognitionTask<void> ModelDownload::waitForTurn(QLockFile* lock) {
    const Alive alive = alive_;
    while (!lock->tryLock(0)) {
        // Not that another has it: it cannot even be made.
        if (lock->error() == QLockFile::PermissionError)
            co_return failure(notStorable);
        if (lock->error() != QLockFile::LockFailedError)
            co_return failure(notEnoughSpace);
        Gate isTime(false);
        QTimer::singleShot(patience_.betweenLooksAtOthers, [&isTime] { isTime.open(); });
        co_await isTime.opened();
        if (alive.expired() || isCancelled_)
            co_return failure(ReceiveProblem::cancelled);
    }
    co_return Outcome{};
}

bool ModelDownload::hasSpace() const {
    const QString folder = incompleteFolder(store_, model_);
    qint64 needed = reserve;
    for (const ModelFile& file : files_)
        needed += std::max<qint64>(0, file.size - QFileInfo(folder + u'/' + file.name).size());
    return QStorageInfo(folder).bytesAvailable() >= needed;
}

void ModelDownload::tell(qint64 ofThisFile) const {
    if (progress_)
        progress_(filesBefore_ + ofThisFile, std::max(model_.size(), filesBefore_ + ofThisFile));
}

/// Has one file complete and checked in the folder of the incomplete.
RecognitionTask<void> ModelDownload::bring(const ModelFile* file) {
    const Alive alive = alive_;
    const QString path = incompleteFolder(store_, model_) + u'/' + file->name;
    // A part has another name until it is complete.
    if (!QFile::exists(path)) {
        if (auto fetched = co_await fetch(file, ModelFolder::partOf(path)); alive.expired() || !fetched)
            co_return fetched;
        if (!QFile::rename(ModelFolder::partOf(path), path))
            co_return failure(notEnoughSpace);
    }
    tell(QFileInfo(path).size());
    if (file->digest.isEmpty())
        co_return Outcome{};
    auto digesting = inBackground([path] { return ModelStore::digestOf(path); });
    if (co_await digesting == file->digest)
        co_return Outcome{};
    QFile::remove(path);
    co_return failure(ReceiveProblem::tooMuch);
}

RecognitionTask<void> ModelDownload::fetch(const ModelFile* file, QString path) {
    const Alive alive = alive_;
    if (isCancelled_)
        co_return failure(ReceiveProblem::cancelled);
    const QByteArray validator = readValidator(path);
    const bool isExact = !file->digest.isEmpty();
    const qint64 kept = isExact || !validator.isEmpty() ? QFileInfo(path).size() : 0;
    if (isExact && kept == file->size)
        co_return Outcome{};
    QNetworkReply* const reply = request(*file, kept, isExact ? QByteArray() : validator);
    reply_ = reply;
    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply,
                     [reply, path] { keepValidator(path, *reply); });
    FileReceiver receiver(reply, path, kept, mostOf(*file), reserve, patience_,
                          [this](qint64 size) { tell(size); });
    const auto received = co_await receiver.received();
    if (alive.expired())
        co_return failure(ReceiveProblem::cancelled);
    if (!received)
        qCWarning(speechLog).noquote()
            << "model" << model_.id << "not downloaded, problem" << static_cast<int>(received.error());
    if (!received)
        co_return failure(isCancelled_ ? ReceiveProblem::cancelled : received.error());
    if (isExact && QFileInfo(path).size() < file->size)
        co_return failure(ReceiveProblem::broken);
    co_return Outcome{};
}

QNetworkReply* ModelDownload::request(const ModelFile& file, qint64 from, const QByteArray& validator) {
    QNetworkRequest request{QUrl(file.address)};
    // Any host, but never from a protected connection to an open one.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setTransferTimeout(static_cast<int>(patience_.silence.count()));
    request.setRawHeader("Accept-Encoding", "identity");
    request.setHeader(QNetworkRequest::UserAgentHeader, u"Velorin"_s);
    if (from > 0) {
        QByteArray range("bytes=");
        request.setRawHeader("Range", range.append(QByteArray::number(from)).append('-'));
    }
    if (from > 0 && !validator.isEmpty())
        request.setRawHeader("If-Range", validator);
    return network_.get(request);
}

bool ModelDownload::keepsDigests() const {
    return std::ranges::any_of(model_.files, &QByteArray::isEmpty, &ModelFile::digest);
}

RecognitionTask<void> ModelDownload::putInPlace() {
    const QString folder = incompleteFolder(store_, model_);
    const QString place = store_.userFolder() + u'/' + model_.id;
    auto checking = inBackground([folder, &model = model_, files = files_, keeps = keepsDigests(),
                                  trial = trial_] {
        const bool isTrusted = std::ranges::none_of(files, &QByteArray::isEmpty, &ModelFile::digest);
        return (isTrusted || trial(folder, model)) && (!keeps || ModelStore::recordDigests(folder, files));
    });
    const Alive alive = alive_;
    const bool isUsable = co_await checking;
    if (alive.expired())
        co_return failure(ReceiveProblem::cancelled);
    if (!isUsable) {
        ModelFolder::clear(folder, model_);
        co_return failure(ReceiveProblem::tooMuch);
    }
    // What is there is damaged, or it would not have been downloaded.
    if (!syncFolder(folder) || !ModelFolder::putInPlace(folder, place, model_))
        co_return failure(notEnoughSpace);
    qCInfo(speechLog).noquote() << "model" << model_.id << "installed";
    co_return Outcome{};
}

} // namespace velorin

#include "platform/linux/recognition/FileReceiver.h"

#include <QObject>

#include <sys/statvfs.h>

namespace velorin {

namespace {

constexpr int partialContent = 206;
constexpr int rangeNotSatisfiable = 416;

bool goesOnAt(const QNetworkReply& reply, qint64 position) {
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    QByteArray expected("bytes ");
    return status == partialContent &&
           reply.rawHeader("Content-Range")
               .startsWith(expected.append(QByteArray::number(position)).append('-'));
}

} // namespace

FileReceiver::FileReceiver(QNetworkReply* reply, const QString& path, qint64 kept, qint64 most,
                           qint64 reserve, ModelDownload::Patience patience,
                           std::function<void(qint64)> progress)
    : reply_(reply), file_(path), kept_(kept), most_(most), reserve_(reserve), patience_(patience),
      progress_(std::move(progress)) {
    QObject::connect(reply_, &QNetworkReply::readyRead, &pace_, [this] { takeWhatIsThere(); });
    // Not at once: an abort finishes the reply within the call, and the end of this is the end of us.
    QObject::connect(
        reply_, &QNetworkReply::finished, &pace_, [this] { end(); }, Qt::QueuedConnection);
    QObject::connect(&pace_, &QTimer::timeout, &pace_, [this] { checkPace(); });
    sizeAtLastLook_ = kept_;
    pace_.start(patience_.period);
}

FileReceiver::~FileReceiver() {
    reply_->disconnect();
    reply_->abort();
    reply_->deleteLater();
}

QCoro::Task<tl::expected<void, ReceiveProblem>> FileReceiver::received() {
    co_await isOver_.opened();
    if (problem_)
        co_return tl::unexpected(*problem_);
    co_return tl::expected<void, ReceiveProblem>{};
}

void FileReceiver::begin() {
    hasBegun_ = true;
    const bool goesOn = kept_ > 0 && goesOnAt(*reply_, kept_);
    kept_ = goesOn ? kept_ : 0;
    sizeAtLastLook_ = kept_;
    const qint64 announced = reply_->header(QNetworkRequest::ContentLengthHeader).toLongLong();
    announced_ = announced > 0 ? kept_ + announced : 0;
    const auto mode = goesOn ? QIODevice::Append : QIODevice::WriteOnly | QIODevice::Truncate;
    if (!file_.open(mode | QIODevice::Unbuffered))
        stopFor(ReceiveProblem::diskFull);
}

void FileReceiver::takeWhatIsThere() {
    const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    // The body of a refusal is words, and that of a redirect nothing.
    if (problem_ || status < 200 || status >= 300)
        return;
    if (!hasBegun_)
        begin();
    while (!problem_ && reply_->bytesAvailable() > 0) {
        const QByteArray piece = reply_->read(1 << 20);
        if (file_.size() + piece.size() > most_)
            stopFor(ReceiveProblem::tooMuch);
        else if (!hasRoom() || file_.write(piece) != piece.size())
            stopFor(ReceiveProblem::diskFull);
    }
    progress_(file_.size());
}

bool FileReceiver::hasRoom() const {
    struct statvfs disk {};
    if (fstatvfs(file_.handle(), &disk) != 0)
        return true; // writing will tell
    return static_cast<qint64>(disk.f_bavail * disk.f_frsize) > reserve_;
}

void FileReceiver::checkPace() {
    const qint64 size = file_.size();
    if (size - sizeAtLastLook_ < patience_.leastInPeriod)
        stopFor(ReceiveProblem::tooSlow);
    sizeAtLastLook_ = size;
}

void FileReceiver::stopFor(ReceiveProblem problem) {
    if (problem_)
        return;
    problem_ = problem;
    reply_->abort();
}

void FileReceiver::end() {
    pace_.stop();
    if (!problem_ && reply_->error() == QNetworkReply::NoError)
        takeWhatIsThere();
    if (!problem_ && reply_->error() != QNetworkReply::NoError) {
        const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        // A rest that the server does not know of means that our part is not its file's.
        if (status == rangeNotSatisfiable)
            file_.remove();
        const bool isRefused = status >= 400 || reply_->error() == QNetworkReply::InsecureRedirectError;
        problem_ = isRefused ? ReceiveProblem::refused : ReceiveProblem::broken;
    }
    // The library takes a connection that was closed too early for the end of the file.
    if (!problem_ && file_.size() < announced_)
        problem_ = ReceiveProblem::broken;
    file_.close();
    isOver_.open();
}

} // namespace velorin

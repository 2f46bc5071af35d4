/// Writes the body of one HTTP reply to a file as it comes, and watches that it keeps coming.
#pragma once

#include "platform/Gate.h"
#include "platform/linux/recognition/ModelDownload.h"

#include <QFile>
#include <QNetworkReply>
#include <QTimer>

namespace velorin {

enum class ReceiveProblem {
    refused, ///< The server has no such file for us.
    broken,  ///< The connection, the name, or the server's patience.
    tooSlow,
    tooMuch, ///< More than the file has.
    diskFull,
    cancelled,
};

class FileReceiver final {
public:
    /// Takes over the reply. `kept` bytes of the file are there already, if the server goes on after them; a
    /// server that begins anew makes us do so as well. `most` is the size that the whole may have, and no
    /// more is written than leaves the disk `reserve` bytes.
    FileReceiver(QNetworkReply* reply, const QString& path, qint64 kept, qint64 most, qint64 reserve,
                 ModelDownload::Patience patience, std::function<void(qint64)> progress);
    FileReceiver(const FileReceiver&) = delete;
    FileReceiver& operator=(const FileReceiver&) = delete;
    ~FileReceiver();

    [[nodiscard]] QCoro::Task<tl::expected<void, ReceiveProblem>> received();

private:
    void begin();
    void takeWhatIsThere();
    void end();
    void stopFor(ReceiveProblem problem);
    void checkPace();
    [[nodiscard]] bool hasRoom() const;

    QNetworkReply* reply_;
    QFile file_;
    qint64 kept_;
    qint64 most_;
    qint64 reserve_;
    ModelDownload::Patience patience_;
    std::function<void(qint64)> progress_;
    std::optional<ReceiveProblem> problem_;
    bool hasBegun_ = false;
    qint64 announced_ = 0; ///< The size of the whole as the server told it; 0 when it did not.
    qint64 sizeAtLastLook_ = 0;
    QTimer pace_;
    Gate isOver_{false};
};

} // namespace velorin

#include "speech/RecordingWriter.h"

#include "speech/AudioConversion.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A WAV file of nothing but its header has 44 bytes.
constexpr qint64 smallestWithSound = 45;
constexpr qint64 bytesOfAFrame = 2;

} // namespace

std::shared_ptr<RecordingWriter> RecordingWriter::make(const ApplicationFolders& folders,
                                                       AudioFileFactory& files,
                                                       AudioConverterFactory& converters,
                                                       const AudioFormat& inputFormat,
                                                       std::optional<qint64> mostBytes) {
    const QString path = folders.temporaryFolder() + u"/velorin-"_s +
                         QUuid::createUuid().toString(QUuid::WithoutBraces) + u".wav"_s;
    auto writer = std::make_shared<RecordingWriter>();
    writer->path_ = path;
    writer->mostBytes_ = mostBytes;
    writer->file_ = files.create(path, fileFormat);
    if (writer->file_) {
        writer->format_ = writer->file_->processingFormat();
        writer->converter_ = converters.make(inputFormat, writer->format_);
    }
    if (!writer->converter_) {
        writer->discard();
        return nullptr;
    }
    return writer;
}

void RecordingWriter::write(const AudioBuffer& buffer) {
    if (!file_ || loss_ == Loss::tooLong)
        return;
    const auto converted = convert(buffer, *converter_, format_);
    if (!converted)
        return;
    bytes_ += qint64{converted->frames()} * bytesOfAFrame;
    if (mostBytes_ && bytes_ > *mostBytes_)
        loss_ = Loss::tooLong;
    else if (!file_->write(*converted))
        loss_ = Loss::samples;
}

std::optional<QString> RecordingWriter::finish() {
    close();
    const QFileInfo file(path_);
    if (file.exists() && file.size() >= smallestWithSound)
        return path_;
    QFile::remove(path_);
    return std::nullopt;
}

void RecordingWriter::discard() {
    close();
    QFile::remove(path_);
}

} // namespace velorin

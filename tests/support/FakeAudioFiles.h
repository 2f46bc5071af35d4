/// Sound files of whose content only the size is real: a test says how many bytes each write adds.
#pragma once

#include "platform/AudioFileWriter.h"

#include <QFile>

#include <vector>

namespace velorin {

struct FakeAudioFiles final : AudioFileFactory {
    bool refuses = false;
    qint64 bytesAtFirst = 44;
    qint64 bytesPerWrite = 200;
    bool writeSucceeds = true;

    std::vector<QString> paths;
    std::vector<AudioFormat> formats;
    int writes = 0;
    int open = 0;

    std::unique_ptr<AudioFileWriter> create(const QString& path, AudioFormat format) override {
        paths.push_back(path);
        formats.push_back(format);
        append(path, bytesAtFirst);
        if (refuses)
            return nullptr;
        return std::make_unique<Writer>(*this, path, format);
    }

private:
    static void append(const QString& path, qint64 bytes) {
        QFile file(path);
        if (file.open(QIODevice::Append))
            file.write(QByteArray(bytes, 'x'));
    }

    struct Writer final : AudioFileWriter {
        Writer(FakeAudioFiles& factory, QString itsPath, AudioFormat itsFormat)
            : owner(factory), path(std::move(itsPath)), format(itsFormat) {
            ++owner.open;
        }
        ~Writer() override { --owner.open; }

        AudioFormat processingFormat() const override { return format; }
        bool write(const AudioBuffer&) override {
            ++owner.writes;
            if (owner.writeSucceeds)
                append(path, owner.bytesPerWrite);
            return owner.writeSucceeds;
        }

        FakeAudioFiles& owner;
        QString path;
        AudioFormat format;
    };
};

} // namespace velorin

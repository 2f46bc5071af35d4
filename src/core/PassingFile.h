/// A file that goes with its owner, such as a recording that only a provider was to hear.
#pragma once

#include <QFile>
#include <QString>

#include <utility>

namespace velorin {

class PassingFile final {
public:
    explicit PassingFile(QString path) : path_(std::move(path)) {}
    PassingFile(PassingFile&& other) noexcept : path_(std::exchange(other.path_, QString())) {}
    PassingFile& operator=(PassingFile&& other) noexcept {
        std::swap(path_, other.path_);
        return *this;
    }
    PassingFile(const PassingFile&) = delete;
    PassingFile& operator=(const PassingFile&) = delete;
    ~PassingFile() {
        if (!path_.isEmpty())
            QFile::remove(path_);
    }

    [[nodiscard]] const QString& path() const { return path_; }

private:
    QString path_;
};

} // namespace velorin

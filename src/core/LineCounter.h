/// Counts the lines of a text file that grows, in small pieces: however large it is, it is never in memory as
/// a whole, and what was counted once is not read again.
///
///     LineCounter counter;
///     const auto count = counter.count(path, isStopped);      // reads all
///     const auto again = counter.count(path, isStopped);      // reads what has been appended since
///
/// One thread at a time, whichever.
#pragma once

#include <QIODevice>
#include <QString>

#include <atomic>
#include <optional>
#include <utility>

namespace velorin {

class LineCounter final {
public:
    struct Count {
        qint64 lines = 0; ///< That are not empty; 0 when the bytes are no text.
        qint64 bytes = 0;
    };

    /// Nothing when there is no such file. One that cannot be read has no lines. Ends early, with any result,
    /// when it is stopped.
    [[nodiscard]] std::optional<Count> count(const QString& path, const std::atomic<bool>& isStopped);
    /// From where the device stands.
    [[nodiscard]] Count count(QIODevice& device, const std::atomic<bool>& isStopped);

    /// The next count reads all of the file: what was counted may have been changed.
    void startAnew() { *this = {}; }

private:
    using Identity = std::pair<quint64, quint64>;

    Identity file_;         ///< Which file was counted.
    qint64 wholeLines_ = 0; ///< That are not empty, up to
    qint64 endOfWhole_ = 0; ///< the byte behind the last line feed.
};

} // namespace velorin

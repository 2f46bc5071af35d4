/// Keeps every log line while it lives, instead of printing it.
///
///     LogCapture log;
///     …
///     EXPECT_TRUE(log.lines().contains(u"shortcut: engine stopped"_s));
#pragma once

#include <QRegularExpression>
#include <QStringList>

namespace velorin {

class LogCapture final {
public:
    LogCapture() {
        lines_.clear();
        previous_ = qInstallMessageHandler(&LogCapture::handle);
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture() { qInstallMessageHandler(previous_); }

    /// "category: text", with the category's last part only.
    [[nodiscard]] QStringList lines() const { return lines_; }
    [[nodiscard]] QStringList lines(const QString& category) const {
        return lines_.filter(QRegularExpression(QStringLiteral("^%1: ").arg(category)));
    }
    void clear() { lines_.clear(); }

private:
    static void handle(QtMsgType, const QMessageLogContext& context, const QString& message) {
        lines_.append(QString::fromLatin1(context.category).section(QLatin1Char('.'), -1) +
                      QStringLiteral(": ") + message);
    }

    static inline QStringList lines_;
    QtMessageHandler previous_ = nullptr;
};

} // namespace velorin

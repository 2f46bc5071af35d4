#include "ai/Endpoint.h"

#include "text/WhiteSpace.h"

#include <QRegularExpression>
#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace velorin::Endpoint {
namespace {

QStringView trimmed(QStringView endpoint) {
    return WhiteSpace::trimmed(endpoint, WhiteSpace::Set::whitespacesAndNewlines);
}

QUrl parsed(const QString& text) { return QUrl(text, QUrl::StrictMode); }

std::optional<QString> ifAddress(const QString& text) {
    const QUrl url = parsed(text);
    return url.isValid() && !url.host().isEmpty() ? std::optional(text) : std::nullopt;
}

std::optional<QString> completed(QStringView endpoint, const QString& path) {
    QString text = trimmed(endpoint).toString();
    while (text.endsWith(u'/'))
        text.chop(1);
    if (text.isEmpty())
        return std::nullopt;
    if (text.endsWith(path))
        return ifAddress(text);
    if (text.endsWith("/v1"_L1))
        return ifAddress(text + path);
    const QUrl url = parsed(text);
    if (!url.isValid())
        return std::nullopt;
    const bool hasPath = !url.path().isEmpty() && url.path() != "/"_L1;
    if (!hasPath)
        text += u"/v1"_s;
    return ifAddress(text + path);
}

} // namespace

bool isLocal(QStringView endpoint) {
    const QString host = parsed(trimmed(endpoint).toString()).host().toLower();
    return host == "localhost"_L1 || host == "127.0.0.1"_L1 || host == "::1"_L1 || host.endsWith(".local"_L1);
}

bool isThisMachine(QStringView host) {
    static const QRegularExpression loopback(u"^127(\\.\\d{1,3}){3}$"_s);
    const QString name = host.toString().toLower();
    return name == "localhost"_L1 || name == "::1"_L1 || loopback.match(name).hasMatch();
}

std::optional<QString> chatUrl(QStringView endpoint) { return completed(endpoint, u"/chat/completions"_s); }

std::optional<QString> transcriptionUrl(QStringView endpoint) {
    return completed(endpoint, u"/audio/transcriptions"_s);
}

} // namespace velorin::Endpoint

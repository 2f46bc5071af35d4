#include "ai/Endpoint.h"

#include "text/WhiteSpace.h"

#include <QUrl>

using namespace Qt::Literals::StringLiterals;

namespace velorin::Endpoint {

bool isLocal(QStringView endpoint) {
    const QUrl url(WhiteSpace::trimmed(endpoint, WhiteSpace::Set::whitespacesAndNewlines).toString(),
                   QUrl::StrictMode);
    const QString host = url.host().toLower();
    return host == "localhost"_L1 || host == "127.0.0.1"_L1 || host == "::1"_L1 || host.endsWith(".local"_L1);
}

} // namespace velorin::Endpoint

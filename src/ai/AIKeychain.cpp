#include "ai/AIKeychain.h"

#include <QStringDecoder>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

const QString service = u"dev.orrin.velorin.ai"_s;

} // namespace

QString AIKeychain::legacyAccount() { return u"api-key"_s; }

QString AIKeychain::account(AIProvider provider) { return legacyAccount() + u'.' + rawString(provider); }

std::optional<QString> AIKeychain::read(const QString& account) const {
    const auto secret = store_.read(service, account);
    if (!secret)
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString key = decoder.decode(*secret);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(key));
}

bool AIKeychain::save(const QString& key, AIProvider provider) const {
    store_.remove(service, account(provider));
    return store_.add(service, account(provider), key.toUtf8());
}

std::optional<QString> AIKeychain::legacyKey() const {
    return store_.isAwake() ? read(legacyAccount()) : std::nullopt;
}

void AIKeychain::migrateLegacyKey(AIProvider target) const {
    if (target == AIProvider::apple)
        return;
    const auto legacy = legacyKey();
    if (!legacy || legacy->isEmpty())
        return;
    if (!read(target))
        save(*legacy, target);
    store_.remove(service, legacyAccount());
}

} // namespace velorin

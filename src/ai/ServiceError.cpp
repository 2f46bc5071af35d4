#include "ai/ServiceError.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QString tr(const char* text) { return QCoreApplication::translate("ServiceError", text); }

QString httpDescription(int status, const QString& message) {
    const QString reason = message.isEmpty() ? tr("HTTP %1.").arg(QString::number(status)) : message;
    return tr("AI request failed: ") + reason;
}

struct Wording {
    QString operator()(const ServiceError& error) const { return error.description(); }
    QString operator()(const HttpFailure& failure) const { return failure.sentence; }
    QString operator()(RequestCancelled) const { return tr("The request was cancelled."); }
};

struct Outline {
    QString operator()(const ServiceError& error) const {
        if (error.kind == ServiceError::Kind::http)
            return u"http status=%1 chars=%2"_s.arg(QString::number(error.status),
                                                    QString::number(error.length));
        return u"kind %1"_s.arg(static_cast<int>(error.kind));
    }
    QString operator()(const HttpFailure& failure) const {
        return u"connection chars=%1"_s.arg(failure.sentence.size());
    }
    QString operator()(RequestCancelled) const { return u"cancelled"_s; }
};

} // namespace

QString ServiceError::description() const {
    switch (kind) {
    case Kind::http:
        return httpDescription(status, text);
    case Kind::appleIntelligenceUnavailable:
        return text;
    case Kind::appleIntelligence:
        return tr("Apple Intelligence couldn’t complete the request: ") + text;
    case Kind::notConfigured:
        return tr("Choose a provider and finish its setup in Settings first.");
    case Kind::invalidEndpoint:
        return tr("That AI endpoint isn’t a valid URL.");
    case Kind::emptyResponse:
        return tr("The AI returned an empty response.");
    case Kind::malformedResponse:
        return tr("The AI response couldn’t be read.");
    case Kind::audioUnavailable:
        return tr("The recorded audio couldn’t be read.");
    case Kind::notEncrypted:
        return tr("This provider's address is not encrypted, so no key is sent there. Use https.");
    }
    Q_UNREACHABLE();
}

QString description(const AIFailure& failure) { return std::visit(Wording{}, failure); }

QString outline(const AIFailure& failure) { return std::visit(Outline{}, failure); }

} // namespace velorin

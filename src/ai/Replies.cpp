#include "ai/Replies.h"

#include "text/CaseMapping.h"
#include "text/Pattern.h"
#include "text/WhiteSpace.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace velorin::Replies {
namespace {

const QString fence = u"```"_s;
const std::array tagNames{u"final_text"_s, u"rewritten_text"_s, u"edited_text"_s, u"output_text"_s};

QString trimmed(QStringView text) {
    return WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).toString();
}

/// Whether a choice has the form of one; `content` is left alone when it has no text.
bool readChoice(const QJsonValue& choice, std::optional<QString>& content) {
    const QJsonValue message = choice["message"_L1];
    if (!choice.isObject() || !message.isObject())
        return false;
    const QJsonValue text = message["content"_L1];
    if (text.isString())
        content = text.toString();
    return text.isString() || text.isNull() || text.isUndefined();
}

QString withoutFence(const QString& text) {
    if (!text.startsWith(fence) || !text.endsWith(fence))
        return text;
    QStringList lines = text.split(u'\n');
    if (lines.size() < 2)
        return text;
    lines.removeFirst();
    if (WhiteSpace::trimmed(lines.last()) == fence)
        lines.removeLast();
    return trimmed(lines.join(u'\n'));
}

QString withoutTag(const QString& text) {
    for (const QString& name : tagNames) {
        const QString opening = u"<"_s + name + u">"_s;
        const QString closing = u"</"_s + name + u">"_s;
        // The tags are ASCII: only their ends of the text need to be looked at.
        if (CaseMapping::lower(QStringView(text).left(opening.size())) != opening)
            continue;
        QStringView rest = QStringView(text).sliced(opening.size());
        if (CaseMapping::lower(rest.right(closing.size())) == closing)
            rest.chop(closing.size());
        return trimmed(rest);
    }
    return text;
}

} // namespace

std::optional<QString> chat(const QByteArray& body) {
    const QJsonDocument document = QJsonDocument::fromJson(body);
    const QJsonValue choices = document["choices"_L1];
    if (!document.isObject() || !choices.isArray())
        return std::nullopt;
    std::optional<QString> first;
    bool isFirst = true;
    for (const QJsonValue choice : choices.toArray()) {
        std::optional<QString> content;
        if (!readChoice(choice, content))
            return std::nullopt;
        if (isFirst)
            first = std::move(content);
        isFirst = false;
    }
    if (!first)
        return std::nullopt;
    QString text = trimmed(*first);
    return text.isEmpty() ? std::nullopt : std::optional(std::move(text));
}

tl::expected<QString, ServiceError::Kind> transcription(const QByteArray& body) {
    const QJsonDocument document = QJsonDocument::fromJson(body);
    const QJsonValue text = document["text"_L1];
    if (!document.isObject() || !text.isString())
        return tl::unexpected(ServiceError::Kind::malformedResponse);
    QString result = trimmed(text.toString());
    if (result.isEmpty())
        return tl::unexpected(ServiceError::Kind::emptyResponse);
    return result;
}

QString errorMessage(const QByteArray& body) {
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isObject())
        return {};
    const QJsonValue error = document["error"_L1];
    for (const QJsonValue& candidate : {error["message"_L1], error, document["message"_L1]})
        if (candidate.isString())
            return candidate.toString();
    return {};
}

QString stripWrappingFence(const QString& reply) { return withoutTag(withoutFence(trimmed(reply))); }

QString fillPlaceholders(const QString& text, const QString& name) {
    static const Pattern namePlaceholder(u"\\[(?:your|my|sender'?s?)\\s+(?:full\\s+)?name\\]");
    static const Pattern lonePlaceholder(u"^\\s*\\[[^\\]]+\\]\\s*$");
    QStringList lines = namePlaceholder.replaceAll(text, name).split(u'\n');
    lines.removeIf([](const QString& line) { return lonePlaceholder.firstMatch(line).has_value(); });
    return trimmed(lines.join(u'\n'));
}

bool passesConnectionTest(const QString& reply) { return CaseMapping::upper(reply).contains("OK"_L1); }

} // namespace velorin::Replies

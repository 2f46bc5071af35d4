#include "CaseFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace velorin::vectors {
namespace {

bool isNumberCharacter(char c) {
    return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.' || c == 'e' || c == 'E';
}

/// Qt turns integers past 2^63 into doubles, and refuses a file for one number past the doubles.
bool isTooWide(const QByteArray& number) {
    static const QRegularExpression form(uR"(^-?(0|[1-9]\d*)(\.\d+)?([eE][+-]?\d+)?$)"_s);
    if (!form.match(QString::fromLatin1(number)).hasMatch())
        return false; // Qt refuses it, and rightly.
    bool fits = false;
    if (number.contains('.') || number.contains('e') || number.contains('E'))
        number.toDouble(&fits);
    else
        number.toLongLong(&fits);
    return !fits;
}

qsizetype endOfString(const QByteArray& json, qsizetype quote) {
    qsizetype at = quote + 1;
    while (at < json.size() && json[at] != '"')
        at += json[at] == '\\' ? 2 : 1;
    return std::min(at + 1, json.size());
}

QByteArray withWideNumbersAsObjects(const QByteArray& json) {
    QByteArray result;
    result.reserve(json.size());
    for (qsizetype at = 0; at < json.size();) {
        auto end = at + 1;
        const char first = json[at];
        if (first == '"')
            end = endOfString(json, at);
        const bool isNumber = first == '-' || (first >= '0' && first <= '9');
        while (isNumber && end < json.size() && isNumberCharacter(json[end]))
            ++end;
        const auto token = json.mid(at, end - at);
        result += isNumber && isTooWide(token) ? "{\"number\":\"" + token + "\"}" : token;
        at = end;
    }
    return result;
}

} // namespace

tl::expected<CaseFile, QString> CaseFile::parse(const QByteArray& json) {
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(withWideNumbersAsObjects(json), &error);
    if (error.error != QJsonParseError::NoError)
        return tl::unexpected(u"no JSON: %1"_s.arg(error.errorString()));
    const auto suite = document[u"suite"];
    const auto cases = document[u"cases"];
    if (!suite.isString() || !cases.isArray())
        return tl::unexpected(u"no suite with cases"_s);
    CaseFile file{suite.toString(), {}};
    for (const auto& element : cases.toArray()) {
        const auto in = element[u"in"];
        const auto out = element[u"out"];
        if (!in.isObject() || out.isUndefined())
            return tl::unexpected(u"case %1 has no in or no out"_s.arg(file.cases.size()));
        file.cases.push_back({in.toObject(), out});
    }
    return file;
}

tl::expected<CaseFile, QString> CaseFile::read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return tl::unexpected(file.errorString());
    return parse(file.readAll());
}

quint64 unsignedInteger(const QJsonValue& value) {
    return value.isObject() ? value[u"number"].toString().toULongLong()
                            : static_cast<quint64>(value.toInteger());
}

} // namespace velorin::vectors

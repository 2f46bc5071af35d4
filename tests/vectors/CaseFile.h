/// A file of cases: {"suite": name, "cases": [{"in": {…}, "out": value}, …]}.
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include <tl/expected.hpp>
#include <vector>

namespace velorin::vectors {

struct Case {
    QJsonObject in;
    QJsonValue out;
};

struct CaseFile {
    QString suite;
    std::vector<Case> cases;

    /// Parses a file's content. The error says what is wrong with it.
    ///
    /// A number that neither a double nor a signed 64-bit integer holds exactly is kept as its digits, in an
    /// object with the one field "number": see `unsignedInteger`.
    [[nodiscard]] static tl::expected<CaseFile, QString> parse(const QByteArray& json);

    [[nodiscard]] static tl::expected<CaseFile, QString> read(const QString& path);
};

/// The value as an unsigned 64-bit integer, 0 where it is none.
[[nodiscard]] quint64 unsignedInteger(const QJsonValue& value);

} // namespace velorin::vectors

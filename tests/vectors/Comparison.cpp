#include "Comparison.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QVariant>

#include <algorithm>
#include <cmath>

namespace velorin::vectors {
namespace {

bool isInteger(const QJsonValue& value) { return value.toVariant().typeId() == QMetaType::LongLong; }

bool areEqualNumbers(const QJsonValue& expected, const QJsonValue& got, Tolerance tolerance) {
    // Past 2^53 doubles would make different integers equal.
    if (isInteger(expected) && isInteger(got) && expected.toInteger() == got.toInteger())
        return true;
    const double wanted = expected.toDouble();
    const double found = got.toDouble();
    const double allowed = std::max(tolerance.absolute, tolerance.relative * std::abs(wanted));
    if (allowed > 0)
        return std::abs(wanted - found) <= allowed;
    return !(isInteger(expected) && isInteger(got)) && wanted == found;
}

bool areEqualArrays(const QJsonArray& expected, const QJsonArray& got, Tolerance tolerance) {
    return std::equal(expected.begin(), expected.end(), got.begin(), got.end(),
                      [&](const QJsonValue& a, const QJsonValue& b) { return areEqual(a, b, tolerance); });
}

bool areEqualObjects(const QJsonObject& expected, const QJsonObject& got, Tolerance tolerance) {
    if (expected.size() != got.size())
        return false;
    for (auto field = expected.begin(); field != expected.end(); ++field) {
        if (!areEqual(field.value(), got.value(field.key()), tolerance))
            return false;
    }
    return true;
}

} // namespace

bool areEqual(const QJsonValue& expected, const QJsonValue& got, Tolerance tolerance) {
    if (expected.type() != got.type() || expected.isUndefined())
        return false;
    if (expected.isDouble())
        return areEqualNumbers(expected, got, tolerance);
    if (expected.isArray())
        return areEqualArrays(expected.toArray(), got.toArray(), tolerance);
    if (expected.isObject())
        return areEqualObjects(expected.toObject(), got.toObject(), tolerance);
    // QString compares its units, without any normalization.
    return expected == got;
}

QByteArray printable(const QJsonValue& value) {
    if (value.isUndefined())
        return "undefined";
    const auto json = QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact));
    QByteArray line;
    for (const QChar unit : json.sliced(1, json.size() - 2)) {
        if (unit.unicode() >= 0x20 && unit.unicode() < 0x7F)
            line += unit.toLatin1();
        else
            line += "\\u" + QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
    }
    return line;
}

} // namespace velorin::vectors

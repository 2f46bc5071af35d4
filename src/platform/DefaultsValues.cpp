#include "platform/DefaultsValues.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace velorin::DefaultsValues {
namespace {

qint64 leadingInteger(QStringView text) {
    const QStringView trimmed = text.trimmed();
    qsizetype end = trimmed.startsWith(u'-') || trimmed.startsWith(u'+') ? 1 : 0;
    while (end < trimmed.size() && trimmed[end].isDigit())
        ++end;
    return trimmed.first(end).toLongLong();
}

bool readsAsTrue(QStringView text) {
    const QStringView trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return false;
    return u"YyTt"_s.contains(trimmed.front()) || leadingInteger(trimmed) != 0;
}

qint64 clampedInteger(double number) {
    constexpr double limit = 9007199254740992.0; // beyond it doubles skip integers anyway
    return static_cast<qint64>(std::clamp(std::trunc(number), -limit, limit));
}

} // namespace

std::optional<bool> boolean(const UserDefaults& defaults, const QString& key) {
    const auto value = defaults.object(key);
    if (!value)
        return std::nullopt;
    if (value->isDouble())
        return value->toDouble() != 0;
    return value->isString() ? readsAsTrue(value->toString()) : value->toBool();
}

std::optional<QString> string(const UserDefaults& defaults, const QString& key) {
    const auto value = defaults.object(key);
    if (value && value->isDouble())
        return QString::number(value->toDouble(), 'g', 17);
    return value && value->isString() ? std::optional(value->toString()) : std::nullopt;
}

qint64 integer(const UserDefaults& defaults, const QString& key) {
    const auto value = defaults.object(key);
    if (!value)
        return 0;
    if (value->isDouble())
        return clampedInteger(value->toDouble());
    return value->isString() ? leadingInteger(value->toString()) : (value->toBool() ? 1 : 0);
}

std::optional<QStringList> stringArray(const UserDefaults& defaults, const QString& key) {
    const auto value = defaults.object(key);
    if (!value || !value->isArray())
        return std::nullopt;
    QStringList list;
    for (const QJsonValue entry : value->toArray()) {
        if (!entry.isString())
            return std::nullopt;
        list.append(entry.toString());
    }
    return list;
}

std::optional<QHash<QString, QString>> stringMap(const UserDefaults& defaults, const QString& key) {
    const auto value = defaults.object(key);
    if (!value || !value->isObject())
        return std::nullopt;
    QHash<QString, QString> map;
    const QJsonObject object = value->toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (!entry.value().isString())
            return std::nullopt;
        map.insert(entry.key(), entry.value().toString());
    }
    return map;
}

} // namespace velorin::DefaultsValues

// What may be in the files of the user's own: the preferences and the history. What is read is written and
// read again, and has to be the same.
#include "cleanup/Personalization.h"
#include "core/DictationRecord.h"
#include "platform/DefaultsValues.h"
#include "shortcuts/ShortcutConfiguration.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdint>
#include <cstdlib>

namespace velorin {
namespace {

class OneValue final : public UserDefaults {
public:
    explicit OneValue(QJsonValue value) : value_(std::move(value)) {}
    [[nodiscard]] std::optional<QJsonValue> object(const QString&) const override { return value_; }
    void set(const QString&, const QJsonValue&) override {}
    void remove(const QString&) override {}
    Subscription groupChanges() override { return {}; }

private:
    QJsonValue value_;
};

void require(bool isSo) {
    if (!isSo)
        std::abort();
}

void readPreference(const QJsonValue& value) {
    const OneValue defaults(value);
    (void)DefaultsValues::boolean(defaults, {});
    (void)DefaultsValues::string(defaults, {});
    (void)DefaultsValues::integer(defaults, {});
    (void)DefaultsValues::stringArray(defaults, {});
    (void)DefaultsValues::stringMap(defaults, {});
}

void readForms(const QByteArray& json) {
    if (const auto shortcuts = ShortcutConfiguration::fromJson(json)) {
        require(ShortcutConfiguration::fromJson(shortcuts->encoded()) == shortcuts);
        (void)shortcuts->summary();
        (void)shortcuts->conflictingRoles();
    }
    if (const auto words = wordReplacementsFromJson(json))
        require(wordReplacementsFromJson(wordReplacementsToJson(*words)) == words);
    if (const auto records = decodeDictationRecords(json, 5000))
        require(decodeDictationRecords(DictationRecordsEncoder().encode(*records)).has_value());
}

} // namespace
} // namespace velorin

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray json(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    velorin::readForms(json);
    const auto preferences = QJsonDocument::fromJson(json).object();
    for (const auto& value : preferences)
        velorin::readPreference(value);
    velorin::readPreference(QString::fromUtf8(json));
    return 0;
}

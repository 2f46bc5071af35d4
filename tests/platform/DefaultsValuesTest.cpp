#include "platform/DefaultsValues.h"

#include "tests/support/FakeUserDefaults.h"

#include <QJsonArray>

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

class DefaultsValuesOfAStore : public testing::Test {
protected:
    FakeUserDefaults with(const QJsonValue& value) const {
        FakeUserDefaults defaults;
        defaults.values[u"k"_s] = value;
        return defaults;
    }
};

TEST_F(DefaultsValuesOfAStore, BooleansAreReadFromWhatPeopleWrite) {
    EXPECT_EQ(DefaultsValues::boolean(FakeUserDefaults(), u"k"_s), std::nullopt);
    for (const QJsonValue& value : {QJsonValue(true), QJsonValue(1), QJsonValue(0.5), QJsonValue(u"YES"_s),
                                    QJsonValue(u"true"_s), QJsonValue(u"1"_s)})
        EXPECT_EQ(DefaultsValues::boolean(with(value), u"k"_s), true);
    for (const QJsonValue& value : {QJsonValue(false), QJsonValue(0), QJsonValue(u"NO"_s), QJsonValue(u"0"_s),
                                    QJsonValue(QString()), QJsonValue(QJsonArray())})
        EXPECT_EQ(DefaultsValues::boolean(with(value), u"k"_s), false);
}

TEST_F(DefaultsValuesOfAStore, IntegersAreCutOffAndNeverOverflow) {
    EXPECT_EQ(DefaultsValues::integer(FakeUserDefaults(), u"k"_s), 0);
    EXPECT_EQ(DefaultsValues::integer(with(-1.9), u"k"_s), -1);
    EXPECT_EQ(DefaultsValues::integer(with(u" 12 apples"_s), u"k"_s), 12);
    EXPECT_EQ(DefaultsValues::integer(with(true), u"k"_s), 1);
    EXPECT_GT(DefaultsValues::integer(with(1e300), u"k"_s), 1LL << 50);
}

TEST_F(DefaultsValuesOfAStore, ListsAndMapsOfTextsAreTakenWholeOrNotAtAll) {
    EXPECT_EQ(DefaultsValues::stringArray(with(QJsonArray{u"a"_s}), u"k"_s), QStringList{u"a"_s});
    EXPECT_EQ(DefaultsValues::stringArray(with(QJsonArray{u"a"_s, 1}), u"k"_s), std::nullopt);
    EXPECT_EQ(DefaultsValues::stringMap(with(QJsonObject{{u"a"_s, u"b"_s}}), u"k"_s)->value(u"a"_s), u"b"_s);
    EXPECT_EQ(DefaultsValues::stringMap(with(QJsonObject{{u"a"_s, true}}), u"k"_s), std::nullopt);
}

TEST_F(DefaultsValuesOfAStore, ATextMayHaveBeenWrittenAsANumber) {
    EXPECT_EQ(DefaultsValues::string(with(12), u"k"_s), u"12"_s);
    EXPECT_EQ(DefaultsValues::string(with(true), u"k"_s), std::nullopt);
}

} // namespace
} // namespace velorin

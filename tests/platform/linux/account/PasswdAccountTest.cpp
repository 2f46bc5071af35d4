#include "platform/linux/account/PasswdAccount.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

TEST(PasswdAccount, TakesTheFirstFieldOfTheCommentElseTheLoginName) {
    EXPECT_EQ(PasswdAccount::nameOf(u"Ada Lovelace,Room 1,,"_s, u"ada"_s), u"Ada Lovelace"_s);
    EXPECT_EQ(PasswdAccount::nameOf(u"Ada Lovelace"_s, u"ada"_s), u"Ada Lovelace"_s);
    EXPECT_EQ(PasswdAccount::nameOf(u" ,Room 1"_s, u"ada"_s), u"ada"_s);
    EXPECT_EQ(PasswdAccount::nameOf(QString(), u"ada"_s), u"ada"_s);
}

TEST(PasswdAccount, KnowsWhoRunsThis) { EXPECT_NE(PasswdAccount().fullName(), QString()); }

} // namespace
} // namespace velorin

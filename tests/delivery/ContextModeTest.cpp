#include "delivery/ContextMode.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

TEST(ContextProfile, FlagsDistinguishCodeFromProse) {
    for (const ContextProfile profile : allContextProfiles) {
        const bool isCode = profile == ContextProfile::code || profile == ContextProfile::terminal;
        EXPECT_EQ(isCodeLike(profile), isCode);
        EXPECT_EQ(usesCodeSymbols(profile), isCode);
        EXPECT_EQ(capitalizesSentences(profile), !isCode);
        EXPECT_EQ(addsTerminalPunctuation(profile), !isCode);
    }
}

TEST(ContextProfile, IsKnownByItsName) {
    QStringList names;
    for (const ContextProfile profile : allContextProfiles) {
        names.append(rawString(profile));
        EXPECT_EQ(contextProfileFromRawString(rawString(profile)), profile);
    }
    EXPECT_EQ(names.join(u' '), u"generic code terminal email chat document"_s);
    EXPECT_FALSE(contextProfileFromRawString(u"Code"));
    EXPECT_FALSE(contextProfileFromRawString(u""));
}

TEST(ContextMode, FixesTheProfileOfItsNameButAuto) {
    QStringList names;
    QStringList labels;
    for (const ContextMode mode : allContextModes) {
        names.append(rawString(mode));
        labels.append(label(mode));
        EXPECT_EQ(contextModeFromRawString(rawString(mode)), mode);
        if (mode != ContextMode::auto_) {
            EXPECT_EQ(rawString(*profile(mode)), rawString(mode));
        }
    }
    EXPECT_FALSE(profile(ContextMode::auto_));
    EXPECT_EQ(names.join(u' '), u"auto generic code terminal email chat document"_s);
    EXPECT_EQ(labels.join(u'|'), u"Auto (recommended)|Generic|Code|Terminal|Email|Chat|Document"_s);
    EXPECT_FALSE(contextModeFromRawString(u"automatic"));
}

} // namespace
} // namespace velorin

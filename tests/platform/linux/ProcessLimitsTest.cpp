#include "platform/linux/ProcessLimits.h"

#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <sys/prctl.h>
#include <sys/resource.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// What a program that we start has for limits.
QByteArray limitsOfAChild(bool areRestored) {
    QProcess child;
    if (areRestored)
        child.setChildProcessModifier(&ProcessLimits::restoreInChild);
    child.start(u"sh"_s, {u"-c"_s, u"ulimit -S -c; ulimit -H -c; cat /proc/self/coredump_filter"_s});
    EXPECT_TRUE(child.waitForFinished(20'000));
    return child.readAllStandardOutput();
}

QByteArray ownFilter() {
    QFile file(u"/proc/self/coredump_filter"_s);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().trimmed();
}

TEST(ProcessLimits, ForbidDumpsToUsAndToNobodyWhomWeStart) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_CORE, &before), 0);
    const rlimit some{before.rlim_max, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_CORE, &some), 0);
    const auto usual = limitsOfAChild(false);
    ASSERT_NE(ownFilter(), "00000000");

    ProcessLimits::forbidCoreDumps();
    ProcessLimits::forbidCoreDumps(); // a second time forgets nothing
    rlimit after{};
    ASSERT_EQ(getrlimit(RLIMIT_CORE, &after), 0);
    EXPECT_EQ(after.rlim_cur, 0U);
    EXPECT_EQ(ownFilter(), "00000000");
    EXPECT_NE(limitsOfAChild(false), usual);
    EXPECT_EQ(limitsOfAChild(true), usual);
    EXPECT_EQ(prctl(PR_GET_DUMPABLE), 1) << "others may look at us";
}

} // namespace
} // namespace velorin

#include "platform/linux/ChildSetup.h"

#include "platform/UsersMask.h"
#include "platform/linux/ProcessLimits.h"
#include "tests/support/WaitUntil.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/resource.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

const QString question = u"umask; ulimit -S -c"_s;

QByteArray usersOwn() {
    QProcess shell;
    shell.start(u"sh"_s, {u"-c"_s, question});
    EXPECT_TRUE(shell.waitForFinished(20'000));
    return shell.readAllStandardOutput();
}

TEST(ChildSetup, WhatIsStartedForTheUserHasTheUsersMaskAndLimits) {
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_CORE, &limit), 0);
    limit.rlim_cur = limit.rlim_max;
    ASSERT_EQ(setrlimit(RLIMIT_CORE, &limit), 0);
    umask(0002);
    const QByteArray expected = usersOwn();
    UsersMask::setAside();
    ProcessLimits::forbidCoreDumps();
    ASSERT_NE(usersOwn(), expected);

    const QTemporaryDir folder;
    const QString answer = folder.filePath(u"answer"_s);
    ASSERT_TRUE(
        startForTheUser(u"sh"_s, {u"-c"_s, u"{ %1; } > %2.part && mv %2.part %2"_s.arg(question, answer)}));
    QFile file(answer);
    int argc = 0;
    const QCoreApplication application(argc, nullptr);
    ASSERT_TRUE(waitUntil([&] { return file.open(QIODevice::ReadOnly); }));
    EXPECT_EQ(file.readAll(), expected);
}

TEST(ChildSetup, SaysWhenAProgramCannotBeStarted) {
    EXPECT_FALSE(startForTheUser(u"/no/such/program"_s, {}));
}

} // namespace
} // namespace velorin

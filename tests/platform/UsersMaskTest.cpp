#include "platform/UsersMask.h"

#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// As a process has it, from what the system tells of it.
QByteArray maskOf(pid_t process) {
    QFile file(u"/proc/%1/status"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith("Umask:"))
            return line.sliced(6).trimmed();
    return {};
}

class UsersMaskTest : public testing::Test {
protected:
    UsersMaskTest() : before_(umask(0027)) { UsersMask::setAside(); }
    ~UsersMaskTest() override {
        UsersMask::own = UsersMask::none;
        umask(before_);
    }

private:
    mode_t before_;
};

TEST_F(UsersMaskTest, IsNotOurs) { EXPECT_EQ(maskOf(getpid()), "0077"); }

TEST_F(UsersMaskTest, IsWhatAStartedProgramHas) {
    QProcess child;
    child.setChildProcessModifier(&UsersMask::giveBack);
    child.start(u"/bin/sh"_s, {u"-c"_s, u"umask"_s});
    ASSERT_TRUE(child.waitForFinished(10'000));
    EXPECT_EQ(child.readAllStandardOutput().trimmed(), "0027");
    EXPECT_EQ(maskOf(getpid()), "0077");
}

TEST_F(UsersMaskTest, IsWhatADetachedProgramHas) {
    qint64 process = 0;
    UsersMask::onThreadOfItsOwn(
        [&] { ASSERT_TRUE(QProcess::startDetached(u"/bin/sleep"_s, {u"60"_s}, {}, &process)); });
    EXPECT_EQ(maskOf(static_cast<pid_t>(process)), "0027");
    kill(static_cast<pid_t>(process), SIGKILL);
}

TEST_F(UsersMaskTest, IsWhatAProgramHasThatAThreadOfItsOwnStarts) {
    pid_t process = 0;
    char program[] = "/bin/sleep";
    char argument[] = "60";
    char* const words[] = {program, argument, nullptr};
    UsersMask::onThreadOfItsOwn(
        [&] { ASSERT_EQ(posix_spawn(&process, program, nullptr, nullptr, words, environ), 0); });
    EXPECT_EQ(maskOf(process), "0027");
    EXPECT_EQ(maskOf(getpid()), "0077") << "the others keep ours";
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

} // namespace
} // namespace velorin

#include "platform/linux/ChildSetup.h"

#include "platform/UsersMask.h"
#include "platform/linux/ProcessLimits.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velorin {
namespace {

/// The program, or, where it cannot be run, the reason through the pipe. In the child: nothing is allocated.
[[noreturn]] void become(char* const* words, int failure) {
    beAsTheUserStartsIt();
    sigset_t none{};
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr); // our threads block what the program may want to hear
    execvp(words[0], words);
    const int reason = errno;
    (void)!write(failure, &reason, sizeof reason);
    _exit(1);
}

} // namespace

void beAsTheUserStartsIt() {
    UsersMask::giveBack();
    ProcessLimits::restoreInChild();
}

bool startForTheUser(const QString& program, const QStringList& arguments) {
    std::vector<QByteArray> encoded{QFile::encodeName(program)};
    for (const auto& argument : arguments)
        encoded.push_back(QFile::encodeName(argument));
    std::vector<char*> words;
    for (auto& word : encoded)
        words.push_back(word.data());
    words.push_back(nullptr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0) {
        setsid();
        // Its parent is gone at once, so that nobody has to wait for its end.
        const pid_t grandchild = fork();
        if (grandchild == 0)
            become(words.data(), ends[1]);
        _exit(grandchild < 0 ? 1 : 0);
    }
    close(ends[1]);
    int status = 1;
    if (child > 0)
        waitpid(child, &status, 0);
    int reason = 0;
    const bool isRefused = read(ends[0], &reason, sizeof reason) > 0; // ends when the program has begun
    close(ends[0]);
    return child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0 && !isRefused;
}

} // namespace velorin

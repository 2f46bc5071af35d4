#include "platform/linux/account/PasswdAccount.h"

#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include <pwd.h>
#include <unistd.h>

namespace velorin {
namespace {

constexpr std::chrono::milliseconds deadline{300};
constexpr std::size_t longestEntry = 64 * 1024;

QString readFullName(uid_t user) {
    std::vector<char> buffer(longestEntry);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr ||
        entry.pw_gecos == nullptr)
        return qEnvironmentVariable("USER");
    return PasswdAccount::nameOf(QString::fromLocal8Bit(entry.pw_gecos),
                                 QString::fromLocal8Bit(entry.pw_name));
}

} // namespace

QString PasswdAccount::nameOf(const QString& comment, const QString& login) {
    const QString name = comment.section(QLatin1Char(','), 0, 0).trimmed();
    return name.isEmpty() ? login : name;
}

// The list may be a server of the network that does not answer: then there is no name, and the thread ends
// when it does.
QString PasswdAccount::fullName() const {
    std::promise<QString> name;
    auto answer = name.get_future();
    std::thread([user = getuid(), name = std::move(name)]() mutable {
        name.set_value(readFullName(user));
    }).detach();
    return answer.wait_for(deadline) == std::future_status::ready ? answer.get() : QString();
}

} // namespace velorin

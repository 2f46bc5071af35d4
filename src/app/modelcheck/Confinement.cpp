#include "app/modelcheck/Confinement.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace velorin::Confinement {

namespace {

#if defined(__x86_64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t architecture = 0;
#endif

/// Numbers from here on are those of another set of calls on the same processor.
constexpr std::uint32_t otherCalls = 0x40000000;

/// What opens a road to somebody else. io_uring can do all of the others' work.
constexpr std::array refused{__NR_socket,
                             __NR_connect,
                             __NR_bind,
                             __NR_listen,
                             __NR_sendto,
                             __NR_sendmsg,
                             __NR_execve,
                             __NR_execveat,
                             __NR_ptrace,
                             __NR_process_vm_readv,
                             __NR_process_vm_writev,
                             __NR_io_uring_setup};

constexpr std::size_t callsFrom = 6;
constexpr std::size_t length = callsFrom + refused.size() + 2;

std::array<sock_filter, length> makeProgram() {
    constexpr std::uint16_t load = BPF_LD | BPF_W | BPF_ABS;
    constexpr std::uint16_t jumpIfEqual = BPF_JMP | BPF_JEQ | BPF_K;
    constexpr std::uint16_t jumpIfAtLeast = BPF_JMP | BPF_JGE | BPF_K;
    constexpr std::uint16_t answer = BPF_RET | BPF_K;
    std::array<sock_filter, length> program{};
    program[0] = BPF_STMT(load, offsetof(seccomp_data, arch));
    program[1] = BPF_JUMP(jumpIfEqual, architecture, 1, 0);
    program[2] = BPF_STMT(answer, SECCOMP_RET_KILL_PROCESS);
    program[3] = BPF_STMT(load, offsetof(seccomp_data, nr));
    program[4] = BPF_JUMP(jumpIfAtLeast, otherCalls, 0, 1);
    program[5] = BPF_STMT(answer, SECCOMP_RET_KILL_PROCESS);
    for (std::size_t i = 0; i < refused.size(); ++i) {
        const auto toRefusal = static_cast<std::uint8_t>(refused.size() - i);
        program[callsFrom + i] = BPF_JUMP(jumpIfEqual, static_cast<std::uint32_t>(refused[i]), toRefusal, 0);
    }
    program[length - 2] = BPF_STMT(answer, SECCOMP_RET_ALLOW);
    program[length - 1] = BPF_STMT(answer, SECCOMP_RET_ERRNO | EACCES);
    return program;
}

} // namespace

bool limitMemory(std::uint64_t bytes) {
    const rlimit limit{bytes, bytes};
    return setrlimit(RLIMIT_AS, &limit) == 0;
}

bool leaveTheNetwork() {
    auto program = makeProgram();
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    return architecture != 0 && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

} // namespace velorin::Confinement

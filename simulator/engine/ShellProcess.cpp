// Fork, rights, exec.
#include "simulator/engine/ShellProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneSim {
namespace {

constexpr unsigned kNobody = 65534;
constexpr int kCannotRun = 126;

// The user outside of this user namespace that one inside is; none when the namespace does not know it.
struct MappedUser {
    bool known = false;
    std::uint64_t outside = 0;
};
MappedUser mappedUser(std::uint64_t inside) {
    std::ifstream map("/proc/self/uid_map");
    std::uint64_t first = 0;
    std::uint64_t outside = 0;
    std::uint64_t count = 0;
    while (map >> first >> outside >> count)
        if (inside >= first && inside - first < count)
            return {true, outside + (inside - first)};
    return {};
}

// Gives up all that root has. The system calls themselves: the C library's functions would wait for threads
// that a forked child does not have.
bool becomeNobody() {
    return ::syscall(SYS_setgroups, 0, nullptr) == 0 &&
           ::syscall(SYS_setresgid, kNobody, kNobody, kNobody) == 0 &&
           ::syscall(SYS_setresuid, kNobody, kNobody, kNobody) == 0 &&
           ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::chdir("/") == 0;
}

// Turns a forked child into the shell. Only calls that are safe in a signal handler: other threads of the
// parent may have held any lock.
[[noreturn]] void becomeShell(const char* command, int output, int errors, ShellRights rights) {
    ::setpgid(0, 0);
    sigset_t none;
    ::sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
    const int input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (::dup2(input, STDIN_FILENO) < 0 || ::dup2(output, STDOUT_FILENO) < 0 ||
        ::dup2(errors, STDERR_FILENO) < 0)
        ::_exit(kCannotRun);
    if (rights == ShellRights::Own) {
        ::execl("/bin/sh", "sh", "-c", command, nullptr);
    } else if (becomeNobody()) {
        static const std::array<const char*, 3> environment{"PATH=/usr/bin:/bin", "HOME=/", nullptr};
        ::execle("/bin/sh", "sh", "-c", command, nullptr, environment.data());
    }
    ::_exit(kCannotRun);
}

} // namespace

ShellRights shellRights() {
    if (::geteuid() != 0)
        return ShellRights::Own;
    if (mappedUser(kNobody).known)
        return ShellRights::Nobody;
    if (mappedUser(0).outside == 0)
        throw std::runtime_error(
            "a board's shell is not run as root, and there is no user nobody here to run it as");
    return ShellRights::Own;
}

pid_t startShell(const std::string& command, int output, int errors, ShellRights rights) {
    const pid_t child = ::fork();
    if (child < 0)
        throw std::system_error(errno, std::generic_category(), "cannot run a shell");
    if (child == 0)
        becomeShell(command.c_str(), output, errors, rights);
    ::setpgid(child, child); // as the child does: the group must be there for whoever kills it
    return child;
}

} // namespace OrvaneSim

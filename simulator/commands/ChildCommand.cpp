// Fork, exec, wait, and no process left behind.
#include "simulator/commands/ChildCommand.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneSim {
namespace {

constexpr std::chrono::milliseconds kPatience{2000}; // between SIGTERM and SIGKILL
constexpr int kLookAgain = 50;                       // milliseconds

struct Pipe {
    Orvane::FileDescriptor read;
    Orvane::FileDescriptor write;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    return {Orvane::FileDescriptor(ends[0]), Orvane::FileDescriptor(ends[1])};
}

// Children of any thread of this process.
std::vector<pid_t> children() {
    std::vector<pid_t> found;
    std::error_code ignored;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task", ignored)) {
        std::ifstream list(task.path() / "children");
        for (pid_t child = 0; list >> child;)
            found.push_back(child);
    }
    return found;
}

int shellStatus(int status) {
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace

ChildCommand::ChildCommand(std::vector<std::string> words, const StopSignals& signals)
    : words_(std::move(words)), signals_(signals) {
    // What the command leaves running becomes a child of this process and is found again.
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    Pipe start = makePipe();
    Pipe error = makePipe();
    child_ = ::fork(); // NOLINT(cppcoreguidelines-prefer-member-initializer): after the pipes
    if (child_ < 0)
        throw std::system_error(errno, std::generic_category(), "cannot make a process");
    if (child_ == 0) {
        start.write.reset();
        becomeCommand(start.read.get(), error.write.get());
    }
    startPipe_ = std::move(start.write);
    errorPipe_ = std::move(error.read);
}

ChildCommand::~ChildCommand() {
    startPipe_.reset(); // a child that was never started ends by itself
    endLeftovers();
}

void ChildCommand::becomeCommand(int startPipe, int errorPipe) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    char go = 0;
    if (::read(startPipe, &go, 1) != 1)
        ::_exit(1);
    signals_.restore();
    std::vector<char*> arguments;
    for (std::string& word : words_)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    ::execvp(arguments[0], arguments.data());
    const int error = errno;
    [[maybe_unused]] const auto written = ::write(errorPipe, &error, sizeof error);
    ::_exit(error == ENOENT ? 127 : 126);
}

int ChildCommand::run() {
    if (::write(startPipe_.get(), "", 1) != 1)
        throw std::system_error(errno, std::generic_category(), "the command's process is gone");
    while (!finished_) {
        const siginfo_t signal = signals_.wait();
        if (signal.si_signo == SIGCHLD)
            reapCommand();
        else if (signal.si_code != SI_KERNEL || signal.si_signo == SIGHUP)
            ::kill(child_, signal.si_signo); // other signals of a terminal have reached the command already
    }
    endLeftovers();
    int error = 0;
    // The pipe ends without a word when the command was run.
    const int flags = ::fcntl(errorPipe_.get(), F_SETFL, O_NONBLOCK);
    if (flags == 0 && ::read(errorPipe_.get(), &error, sizeof error) == sizeof error)
        std::fprintf(stderr, "cannot run %s: %s\n", words_[0].c_str(),
                     std::generic_category().message(error).c_str());
    return shellStatus(status_);
}

// Takes the status of the command if it has ended. Other children may be somebody else's to wait for.
void ChildCommand::reapCommand() {
    int status = 0;
    if (::waitpid(child_, &status, WNOHANG) != child_)
        return;
    finished_ = true;
    status_ = status;
}

void ChildCommand::endLeftovers() {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    for (int signal = SIGTERM;;) {
        for (const pid_t child : children())
            if (::kill(child, signal) == 0)
                ::waitpid(child, nullptr, WNOHANG);
        if (children().empty())
            return;
        signals_.wait(kLookAgain);
        if (std::chrono::steady_clock::now() > deadline)
            signal = SIGKILL;
    }
}

} // namespace OrvaneSim

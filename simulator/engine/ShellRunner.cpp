// Processes, their outputs and their time-outs.
#include "simulator/engine/ShellRunner.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneSim {
namespace {

constexpr std::size_t kMostKept = 65536;

// Makes a pipe, keeps its reading end in `reader` and returns the writing end.
Orvane::FileDescriptor openPipe(Orvane::FileDescriptor& reader) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    reader = Orvane::FileDescriptor(ends[0]);
    Orvane::FileDescriptor writer(ends[1]);
    if (::fcntl(reader.get(), F_SETFL, O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot set up a pipe");
    return writer;
}

} // namespace

ShellRunner::~ShellRunner() {
    for (const Process& process : processes_) {
        ::kill(-process.pid, SIGKILL);
        ::waitpid(process.pid, nullptr, 0);
    }
}

void ShellRunner::run(const std::string& command, std::chrono::seconds limit, Done done) {
    const auto process = processes_.emplace(processes_.end());
    try {
        const Orvane::FileDescriptor output = openPipe(process->output.pipe);
        const Orvane::FileDescriptor errors = openPipe(process->errors.pipe);
        process->pid = startShell(command, output.get(), errors.get(), rights_);
    } catch (...) {
        processes_.erase(process);
        throw;
    }
    process->done = std::move(done);
    process->end = Orvane::FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process->pid, 0)));
    watchStream(process->output);
    watchStream(process->errors);
    process->endWatch =
        loop_.watch(process->end.get(), EPOLLIN, [this, process](std::uint32_t) { finish(process); });
    loop_.after(limit, process->life, [process] {
        process->timedOut = true;
        ::kill(-process->pid, SIGKILL); // its end is then seen as any other
    });
}

void ShellRunner::watchStream(Stream& stream) {
    stream.watch = loop_.watch(stream.pipe.get(), EPOLLIN, [this, &stream](std::uint32_t) { drain(stream); });
}

void ShellRunner::drain(Stream& stream) {
    std::vector<char>& room = loop_.scratch();
    for (;;) {
        const ssize_t count = ::read(stream.pipe.get(), room.data(), room.size());
        if (count <= 0) {
            if (count == 0)
                stream.watch = {}; // closed; nothing more to be told of
            return;
        }
        const std::size_t kept = std::min(static_cast<std::size_t>(count), kMostKept - stream.text.size());
        stream.text.append(room.data(), kept);
    }
}

void ShellRunner::finish(Position process) {
    int status = 0;
    if (::waitpid(process->pid, &status, WNOHANG) != process->pid)
        return;
    ::kill(-process->pid, SIGKILL); // what the shell left in the background
    drain(process->output);
    drain(process->errors);
    const Outcome outcome{process->timedOut,
                          WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status),
                          std::move(process->output.text), std::move(process->errors.text)};
    const Done done = std::move(process->done);
    processes_.erase(process);
    done(outcome);
}

} // namespace OrvaneSim

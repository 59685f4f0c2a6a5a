// Processes that are forked, told by pipes, and waited for.
#include "tests/faults/scenarios/Children.h"

#include "simulator/lab/Lab.h"
#include "tests/faults/scenarios/CheckedCalls.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace OrvaneFaults {
namespace {

constexpr unsigned kBoardsPerProcess = 250; // some twenty descriptors each

struct Pipe {
    Orvane::FileDescriptor read;
    Orvane::FileDescriptor write;

    Pipe() {
        int ends[2];
        if (pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        read.reset(ends[0]);
        write.reset(ends[1]);
    }
};

NamedBoard nameOf(unsigned number) {
    return {"N" + std::to_string(number),
            "10.83." + std::to_string(number / 250) + "." + std::to_string(1 + number % 250), number};
}

[[noreturn]] void serve(unsigned first, unsigned count, int ready, int stop) {
    try {
        OrvaneSim::Lab lab;
        for (unsigned number = first; number < first + count; ++number) {
            const NamedBoard name = nameOf(number);
            OrvaneSim::BoardOptions options;
            options.serial = name.serial;
            options.address = name.address;
            options.keptRequests = 1;
            prepareRegisters(lab.add(options), number);
        }
        char byte = 1;
        if (write(ready, &byte, 1) == 1)
            while (read(stop, &byte, 1) > 0) {
            }
    } catch (const std::exception&) {
        _exit(1);
    }
    _exit(0);
}

pid_t forked() {
    const pid_t child = fork();
    if (child < 0)
        throw std::runtime_error("no child process");
    return child;
}

} // namespace

BoardProcesses::BoardProcesses(unsigned count) {
    for (unsigned first = 0; first < count; first += kBoardsPerProcess)
        startSome(first, std::min(kBoardsPerProcess, count - first));
    for (unsigned number = 0; number < count; ++number)
        boards_.push_back(nameOf(number));
}

void BoardProcesses::startSome(unsigned first, unsigned count) {
    Pipe ready;
    Pipe stop;
    const pid_t pid = forked();
    if (pid == 0) {
        stop.write.reset();
        children_.clear();
        serve(first, count, ready.write.get(), stop.read.get());
    }
    ready.write.reset();
    children_.push_back({pid, std::move(stop.write)});
    char byte = 0;
    if (read(ready.read.get(), &byte, 1) != 1)
        throw std::runtime_error("the boards from number " + std::to_string(first) + " on did not start");
}

BoardProcesses::~BoardProcesses() {
    for (Child& child : children_)
        child.stop.reset();
    for (const Child& child : children_)
        waitpid(child.pid, nullptr, 0);
}

ChildEnd inChild(const std::function<int(int words)>& work, std::chrono::seconds limit) {
    Pipe words;
    const pid_t pid = forked();
    if (pid == 0) {
        words.read.reset();
        int status = 99;
        try {
            status = work(words.write.get());
        } catch (...) {
        }
        _exit(status);
    }
    words.write.reset();
    ChildEnd end{ChildEnd::How::Exited, 0, {}};
    // The pipe's end is the child's.
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd entry{words.read.get(), POLLIN, 0};
        if (left.count() <= 0 || poll(&entry, 1, static_cast<int>(left.count())) == 0) {
            kill(pid, SIGKILL);
            end.how = ChildEnd::How::Hung;
            break;
        }
        char text[512];
        const ssize_t length = read(words.read.get(), text, sizeof text);
        if (length <= 0)
            break;
        end.words.append(text, static_cast<std::size_t>(length));
    }
    int status = 0;
    waitpid(pid, &status, 0);
    if (end.how != ChildEnd::How::Hung && WIFSIGNALED(status))
        end.how = ChildEnd::How::Killed;
    end.value = WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
    return end;
}

} // namespace OrvaneFaults

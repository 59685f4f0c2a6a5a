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

namespace OrvaneFaults {
namespace {

constexpr unsigned kBoardsPerProcess = 250; // some twenty descriptors each

struct Pipe {
    int read = -1;
    int write = -1;

    Pipe() {
        int ends[2];
        if (pipe(ends) != 0)
            throw std::runtime_error("no pipe");
        read = ends[0];
        write = ends[1];
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
    const Pipe ready;
    const Pipe stop;
    const pid_t pid = forked();
    if (pid == 0) {
        close(stop.write);
        for (const Child& other : children_)
            close(other.stop);
        serve(first, count, ready.write, stop.read);
    }
    close(ready.write);
    close(stop.read);
    children_.push_back({pid, stop.write});
    char byte = 0;
    const bool up = read(ready.read, &byte, 1) == 1;
    close(ready.read);
    if (!up)
        throw std::runtime_error("the boards from number " + std::to_string(first) + " on did not start");
}

BoardProcesses::~BoardProcesses() {
    for (const Child& child : children_)
        close(child.stop);
    for (const Child& child : children_)
        waitpid(child.pid, nullptr, 0);
}

ChildEnd inChild(const std::function<int(int words)>& work, std::chrono::seconds limit) {
    const Pipe words;
    const pid_t pid = forked();
    if (pid == 0) {
        close(words.read);
        int status = 99;
        try {
            status = work(words.write);
        } catch (...) {
        }
        _exit(status);
    }
    close(words.write);
    ChildEnd end{ChildEnd::How::Exited, 0, {}};
    // The pipe's end is the child's.
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd entry{words.read, POLLIN, 0};
        if (left.count() <= 0 || poll(&entry, 1, static_cast<int>(left.count())) == 0) {
            kill(pid, SIGKILL);
            end.how = ChildEnd::How::Hung;
            break;
        }
        char text[512];
        const ssize_t length = read(words.read, text, sizeof text);
        if (length <= 0)
            break;
        end.words.append(text, static_cast<std::size_t>(length));
    }
    close(words.read);
    int status = 0;
    waitpid(pid, &status, 0);
    if (end.how != ChildEnd::How::Hung && WIFSIGNALED(status))
        end.how = ChildEnd::How::Killed;
    end.value = WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
    return end;
}

} // namespace OrvaneFaults

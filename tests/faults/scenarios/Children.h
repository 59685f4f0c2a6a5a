// Child processes of a run: boards that must not count as the client's, clients that are to run out of
// things.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <chrono>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace OrvaneFaults {

struct NamedBoard {
    std::string serial;
    std::string address;
    unsigned number;
};

// Boards in processes of their own, a few hundred to each. To be made while this process has one thread.
class BoardProcesses {
public:
    // Throws std::runtime_error when they do not come up.
    explicit BoardProcesses(unsigned count);
    ~BoardProcesses();
    BoardProcesses(const BoardProcesses&) = delete;
    BoardProcesses& operator=(const BoardProcesses&) = delete;

    const std::vector<NamedBoard>& boards() const { return boards_; }

private:
    struct Child {
        pid_t pid;
        Orvane::FileDescriptor stop; // the child ends when this end of the pipe is closed
    };
    void startSome(unsigned first, unsigned count);

    std::vector<Child> children_;
    std::vector<NamedBoard> boards_;
};

// How a child ended.
struct ChildEnd {
    enum class How { Exited, Killed, Hung } how;
    int value;         // exit status, or the signal
    std::string words; // what it wrote to its descriptor
};

// Runs `work` in a child and gives what it returned as exit status; it may write a few words (up to the size
// of a pipe) to the descriptor that it is given. A child that takes longer than `limit` is killed and counts
// as hung. To be called while this process has one thread.
ChildEnd inChild(const std::function<int(int words)>& work, std::chrono::seconds limit);

} // namespace OrvaneFaults

// Simulated boards in a process of their own, the same for both sides of every comparison.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace OrvaneBench {

// Puts the calling process, which has one thread, into a private network and starts a second process that
// serves the boards there until this object is destroyed. Throws std::runtime_error.
class BoardProcess {
public:
    explicit BoardProcess(unsigned boards);
    ~BoardProcess();
    BoardProcess(const BoardProcess&) = delete;
    BoardProcess& operator=(const BoardProcess&) = delete;

    // Board n, from 0, has the serial number BENCHn.
    const std::vector<std::string>& addresses() const { return addresses_; }

private:
    std::vector<std::string> addresses_;
    pid_t process_ = -1;
};

} // namespace OrvaneBench

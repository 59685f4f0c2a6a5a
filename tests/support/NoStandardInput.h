// A process that has closed its standard input, as daemons do.
#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace OrvaneTest {

// While it lives, the next descriptor that is opened is 0. What took it is to be closed before.
class NoStandardInput {
public:
    NoStandardInput() : former_(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
        close(STDIN_FILENO);
    }
    NoStandardInput(const NoStandardInput&) = delete;
    NoStandardInput& operator=(const NoStandardInput&) = delete;
    ~NoStandardInput() {
        if (former_ >= 0) {
            dup2(former_, STDIN_FILENO);
            close(former_);
        }
    }

private:
    int former_;
};

} // namespace OrvaneTest

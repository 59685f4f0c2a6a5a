// Simulated boards in the calling process, for tests: start them, script faults, read what they were asked.
#pragma once

#include "simulator/lab/Board.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace OrvaneSim {

// A set of boards served by one thread of the calling process, on the board side of the private network if
// the process is in one. Its member functions may be called from any thread.
class Lab {
public:
    // Throws std::system_error when the thread or its sockets cannot be had.
    Lab();
    // Stops every board; all `Board` references end.
    ~Lab(); // NOLINT(bugprone-exception-escape)
    Lab(const Lab&) = delete;
    Lab& operator=(const Lab&) = delete;

    // Starts a board and returns when it answers. The reference is good as long as the lab. Throws
    // std::invalid_argument for a serial number or address that the lab has already or that is none, and
    // std::system_error when the address cannot be served.
    Board& add(const BoardOptions& options = {});

    // The board with a serial number. Throws std::out_of_range when there is none.
    Board& board(const std::string& serial);

    // Every board in the order of adding.
    std::vector<Board*> boards();

    // Runs `task` on the lab's thread after `delay`, unless the lab ends first. It must not block; what it
    // throws is shown on standard error.
    void after(std::chrono::milliseconds delay, std::function<void()> task);

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace OrvaneSim

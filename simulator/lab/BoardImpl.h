// What a lab's board is made of, and the addresses that a lab has given away.
#pragma once

#include "simulator/board/SimulatedBoard.h"
#include "simulator/engine/EventLoop.h"
#include "simulator/lab/Board.h"

#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace OrvaneSim {

// The addresses of a lab's boards; any thread may use it.
class AddressBook {
public:
    // Takes an address; false when a board has it already.
    bool take(const std::string& address) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return addresses_.insert(address).second;
    }
    void giveBack(const std::string& address) {
        const std::lock_guard<std::mutex> lock(mutex_);
        addresses_.erase(address);
    }

private:
    std::mutex mutex_; // guards addresses_
    std::set<std::string> addresses_;
};

// Refuses a place where others than this machine could use a board's shell: with std::invalid_argument, when
// `address` is neither a loopback address nor in a private network.
void checkShellPlace(const std::string& address);

struct Board::Impl {
    EventLoop& loop;
    AddressBook& addresses;
    std::string serial;
    std::unique_ptr<SimulatedBoard> board; // made and destroyed on the loop's thread

    // Runs `work(BoardParts&)` on the loop's thread.
    template <class Work>
    auto withParts(Work work) const {
        return loop.call([this, &work] { return work(board->parts()); });
    }
};

} // namespace OrvaneSim

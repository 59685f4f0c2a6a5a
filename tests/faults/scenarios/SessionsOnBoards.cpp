// Makes the boards and their sessions, and a thread for each.
#include "tests/faults/scenarios/SessionsOnBoards.h"

#include <string>
#include <thread>

namespace OrvaneFaults {

void SessionOnBoard::reopen(bool keepAlive) {
    session.reset();
    session = openSession(board.serial(), board.address(), keepAlive);
}

SessionsOnBoards::SessionsOnBoards(unsigned count, std::uint64_t seed, bool keepAlive) {
    for (unsigned number = 0; number < count; ++number) {
        OrvaneSim::BoardOptions options;
        options.serial = "F" + std::to_string(number);
        options.seed = seed * 7919 + number;
        options.keptRequests = 1; // a board that remembers would grow
        OrvaneSim::Board& board = lab_.add(options);
        prepareRegisters(board, number);
        all_.push_back(
            std::unique_ptr<SessionOnBoard>(new SessionOnBoard{board, nullptr, CheckedCalls(number, seed)}));
    }
    onAll([&](SessionOnBoard& each, unsigned) { each.reopen(keepAlive); });
}

void SessionsOnBoards::onAll(const std::function<void(SessionOnBoard&, unsigned)>& work) {
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < all_.size(); ++number)
        threads.emplace_back([&work, this, number] { work(*all_[number], number); });
    for (std::thread& thread : threads)
        thread.join();
}

void SessionsOnBoards::showFaults(const std::vector<OrvaneSim::Fault>& faults) {
    for (const auto& each : all_) {
        each->board.clearFaults();
        for (const OrvaneSim::Fault& fault : faults)
            each->board.inject(fault);
    }
}

Outcomes SessionsOnBoards::takeOutcomes() {
    Outcomes sum;
    for (const auto& each : all_)
        sum += each->calls.take();
    return sum;
}

std::size_t SessionsOnBoards::searchesHeard() const {
    std::size_t sum = 0;
    for (const auto& each : all_)
        sum += each->board.discoveryCount();
    return sum;
}

OrvaneSim::CallCounts SessionsOnBoards::counts() const {
    OrvaneSim::CallCounts sum;
    for (const auto& each : all_)
        for (const auto& [procedure, counts] : each->board.counts())
            if (procedure.rfind("mdio_", 0) == 0) {
                sum.received += counts.received;
                sum.executed += counts.executed;
                sum.faults += counts.faults;
                sum.lostRequests += counts.lostRequests;
                sum.lostReplies += counts.lostReplies;
            }
    return sum;
}

OrvaneSim::CallCounts operator-(OrvaneSim::CallCounts later, const OrvaneSim::CallCounts& earlier) {
    later.received -= earlier.received;
    later.executed -= earlier.executed;
    later.faults -= earlier.faults;
    later.lostRequests -= earlier.lostRequests;
    later.lostReplies -= earlier.lostReplies;
    return later;
}

} // namespace OrvaneFaults

// Calls whose answers cannot be mistaken: every register's value follows from its board and its number.
#pragma once

#include "ov_sys/Interface/sessions/PhySession.h"
#include "simulator/board/Dice.h"
#include "simulator/lab/Lab.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace OrvaneFaults {

constexpr int kPhy = 3;
constexpr unsigned kPort = 1;

// Fills the registers that CheckedCalls reads on a board.
void prepareRegisters(OrvaneSim::Board& board, unsigned number);

// A simple session on a board, kept alive unless told otherwise. Throws what opening throws.
std::unique_ptr<Orvane::PhySession> openSession(const std::string& serial, const std::string& address,
                                                bool keepAlive = true);

// How calls ended, and how long they took.
struct Outcomes {
    std::size_t calls = 0;
    std::size_t good = 0;
    std::size_t remoteErrors = 0;    // Exceptions::Standard "Remote error."
    std::size_t invalidSessions = 0; // Exceptions::InvalidSession
    std::size_t otherDocumented = 0; // Exceptions::NoDevice, InvalidRPCClient, DeviceConnection
    std::size_t wrong = 0;           // a wrong value, or anything that is not documented
    double slowestMs = 0;

    Outcomes& operator+=(const Outcomes& other);
    std::size_t failed() const { return remoteErrors + invalidSessions + otherDocumented; }
};

// Reads of checked registers, and writes of a sequence number with its check word that are read back. The
// registers written belong to the object of their board alone. One thread.
class CheckedCalls {
public:
    CheckedCalls(unsigned number, std::uint64_t seed) : number_(number), dice_(seed + number) {}

    // Makes one call on the session.
    void one(Orvane::PhySession& session);
    // Makes one read; true when it succeeded with the right value.
    bool read(Orvane::PhySession& session);
    // The outcomes since the last call of this.
    Outcomes take() { return std::exchange(outcomes_, {}); }

private:
    template <class Call>
    bool judge(Call call);
    bool readBack(Orvane::PhySession& session);
    void write(Orvane::PhySession& session);

    unsigned number_;
    OrvaneSim::Dice dice_;
    Outcomes outcomes_;
    unsigned step_ = 0;
    std::uint16_t confirmed_ = 0; // the last sequence that the board confirmed
    std::uint16_t tried_ = 0;     // the last one that may have arrived
};

} // namespace OrvaneFaults

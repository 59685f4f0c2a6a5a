// A board with its sockets: port mapper, programs, probe and its voice in discovery.
#pragma once

#include "simulator/board/BoardParts.h"
#include "simulator/board/Discovery.h"
#include "simulator/board/MulticastResponder.h"
#include "simulator/board/ProbeServer.h"
#include "simulator/board/ProgramSet.h"
#include "simulator/engine/RpcServer.h"

#include <cstdint>
#include <memory>
#include <string>

namespace OrvaneSim {

/// One board at one address. Everything but `requests` and the lists of requests heard belongs to the loop's
/// thread.
class SimulatedBoard {
public:
    /// A board that does not serve yet. `loop` and `responder` must outlive it.
    SimulatedBoard(EventLoop& loop, MulticastResponder& responder, std::string address, BoardName name,
                   std::uint64_t seed);
    ~SimulatedBoard();
    SimulatedBoard(const SimulatedBoard&) = delete;
    SimulatedBoard& operator=(const SimulatedBoard&) = delete;

    /// Opens the board's sockets; a serving board goes on. Throws std::system_error when the address is not
    /// there to be had, and then serves nothing.
    void start();
    /// Closes every socket: calls are refused, discovery is not heard.
    void stop();

    /// Runs remote commands in a real shell of this machine from now on.
    void allowShell();

    const std::string& address() const { return address_; }
    BoardParts& parts() { return parts_; }
    DiscoveryVoice& voice() { return voice_; }

private:
    /// What exists only while the board serves.
    struct Sockets {
        Sockets(EventLoop& loop, SimulatedBoard& board);
        RpcServer portMapper;
        RpcServer services;
        ProbeServer probe;
    };
    void registerPrograms();

    EventLoop& loop_;
    MulticastResponder& responder_;
    std::string address_;
    BoardParts parts_;
    DiscoveryVoice voice_;
    ProgramSet portMapperSet_;
    ProgramSet serviceSet_;
    std::unique_ptr<Sockets> sockets_;
};

} // namespace OrvaneSim

// A board with its sockets: port mapper, programs, probe and its answers in discovery.
#pragma once

#include "simulator/board/BoardParts.h"
#include "simulator/board/Discovery.h"
#include "simulator/board/MulticastResponder.h"
#include "simulator/board/ProbeServer.h"
#include "simulator/board/Program.h"
#include "simulator/board/ProgramSet.h"
#include "simulator/board/StrayStream.h"
#include "simulator/engine/RpcServer.h"

#include <cstdint>
#include <memory>
#include <string>

namespace OrvaneSim {

// One board at one address. Everything but `requests` and the lists of requests heard belongs to the loop's
// thread.
class SimulatedBoard {
public:
    // A board that does not serve yet. `loop`, `responder` and `programs` must outlive it.
    SimulatedBoard(EventLoop& loop, MulticastResponder& responder, std::string address, BoardName name,
                   const BoardPrograms& programs, std::uint64_t seed);
    ~SimulatedBoard();
    SimulatedBoard(const SimulatedBoard&) = delete;
    SimulatedBoard& operator=(const SimulatedBoard&) = delete;

    // Opens the board's sockets; a serving board goes on. Throws std::system_error when the address is not
    // there to be had, and then serves nothing.
    void start();
    // Closes every socket: calls are refused, discovery is not heard.
    void stop();
    // Stops and starts, with other ports for the programs.
    void restart();
    // Goes on at another address, with other ports. Throws std::system_error when that is not there to be
    // had, std::invalid_argument when it is none, and then serves where it did.
    void move(const std::string& address);

    // Closes or opens the port mapper's sockets, from now on and at every start.
    void setPortMapper(bool open);

    // Begins a stream of stray datagrams, in place of one that is still flowing. It ends with a stop.
    void sendStrays(const StrayDatagrams& what);
    std::uint64_t straysSent() const { return straysSent_; }

    // Runs remote commands in a real shell of this machine from now on. Throws as ShellRunner does.
    void allowShell();

    const std::string& address() const { return address_; }
    bool serving() const { return sockets_ != nullptr; }
    BoardParts& parts() { return parts_; }
    DiscoveryResponder& discovery() { return discovery_; }

private:
    // What exists only while the board serves.
    struct Sockets {
        Sockets(EventLoop& loop, SimulatedBoard& board);
        std::unique_ptr<RpcServer> portMapper; // null while it is closed
        RpcServer services;
        ProbeServer probe;
        std::unique_ptr<StrayStream> strays;
    };
    std::unique_ptr<RpcServer> openPortMapper();
    void registerPrograms();

    EventLoop& loop_;
    MulticastResponder& responder_;
    const BoardPrograms& programs_;
    std::string address_;
    BoardParts parts_;
    DiscoveryResponder discovery_;
    ProgramSet portMapperSet_;
    ProgramSet serviceSet_;
    bool portMapperOpen_ = true;
    std::uint64_t straysSent_ = 0;
    std::unique_ptr<Sockets> sockets_;
    EventLoop::Life life_ = EventLoop::makeLife();
};

} // namespace OrvaneSim

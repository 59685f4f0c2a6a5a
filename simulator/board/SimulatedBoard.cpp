// Starting and stopping of a board.
#include "simulator/board/SimulatedBoard.h"

#include <netinet/in.h>
#include <utility>

namespace OrvaneSim {
namespace {

constexpr std::uint16_t kPortMapperPort = 111;

} // namespace

SimulatedBoard::Sockets::Sockets(EventLoop& loop, SimulatedBoard& board)
    : portMapper(board.portMapperOpen_ ? board.openPortMapper() : nullptr),
      services(loop, board.address_, 0, board.serviceSet_),
      probe(loop, board.address_, board.discovery_, board.parts_.faults) {}

SimulatedBoard::SimulatedBoard(EventLoop& loop, MulticastResponder& responder, std::string address,
                               BoardName name, const BoardPrograms& programs, std::uint64_t seed)
    : loop_(loop),
      responder_(responder),
      programs_(programs),
      address_(std::move(address)),
      parts_(name.serial, name.line(), seed),
      discovery_(std::move(name)),
      portMapperSet_(parts_, programs.portMapper),
      serviceSet_(parts_, programs.services) {
    parts_.interrupts.use([this](std::chrono::milliseconds time, std::function<void()> task) {
        loop_.after(time, life_, std::move(task));
    });
}

SimulatedBoard::~SimulatedBoard() {
    stop();
}

void SimulatedBoard::start() {
    if (sockets_)
        return;
    sockets_ = std::make_unique<Sockets>(loop_, *this);
    registerPrograms();
    responder_.add(address_, discovery_, parts_.faults);
}

void SimulatedBoard::stop() {
    if (!sockets_)
        return;
    responder_.remove(address_);
    sockets_.reset();
}

void SimulatedBoard::restart() {
    const auto ports = [this] {
        return std::pair(sockets_->services.port(Transport::Tcp), sockets_->services.port(Transport::Udp));
    };
    if (!sockets_) {
        start();
        return;
    }
    const auto former = ports();
    do {
        stop();
        start();
    } while (ports().first == former.first || ports().second == former.second);
}

void SimulatedBoard::move(const std::string& address) {
    endPoint(address, 0); // refuses what is no address
    const bool served = serving();
    stop();
    const std::string former = std::exchange(address_, address);
    if (!served)
        return;
    try {
        start();
    } catch (...) {
        address_ = former;
        start();
        throw;
    }
}

std::unique_ptr<RpcServer> SimulatedBoard::openPortMapper() {
    return std::make_unique<RpcServer>(loop_, address_, kPortMapperPort, portMapperSet_);
}

void SimulatedBoard::setPortMapper(bool open) {
    portMapperOpen_ = open;
    if (!open && sockets_)
        sockets_->portMapper.reset();
    else if (sockets_ && !sockets_->portMapper)
        sockets_->portMapper = openPortMapper();
}

void SimulatedBoard::sendStrays(const StrayDatagrams& what) {
    if (sockets_)
        sockets_->strays = std::make_unique<StrayStream>(loop_, sockets_->services, straysSent_, what,
                                                         Dice(parts_.faults.dice().next()));
}

void SimulatedBoard::allowShell() {
    parts_.shell = std::make_unique<ShellRunner>(loop_);
}

void SimulatedBoard::registerPrograms() {
    const auto both = [this](const Program* program, std::uint32_t tcpPort, std::uint32_t udpPort) {
        parts_.ports.set({program->number, program->version, IPPROTO_TCP, tcpPort});
        parts_.ports.set({program->number, program->version, IPPROTO_UDP, udpPort});
    };
    parts_.ports.clear();
    for (const Program* program : programs_.portMapper)
        both(program, kPortMapperPort, kPortMapperPort);
    for (const Program* program : programs_.services)
        both(program, sockets_->services.port(Transport::Tcp), sockets_->services.port(Transport::Udp));
}

} // namespace OrvaneSim

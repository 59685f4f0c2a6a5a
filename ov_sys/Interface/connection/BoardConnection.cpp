// The making of a board's clients, and the search for a board that has moved or gone.
#include "ov_sys/Interface/connection/BoardConnection.h"

#include "ov_sys/Interface/connection/BoardPing.h"
#include "ov_sys/Interface/connection/PortsAhead.h"
#include "ov_sys/Interface/discovery/BoardFinder.h"
#include "ov_sys/Interface/discovery/FoundBoards.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"
#include "ov_sys/Interface/foundation/Stopwatch.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

namespace Orvane {
namespace {

constexpr const char* kLocalBoardFile = "/boardInfo/name";

template <class Client>
std::unique_ptr<RPCClient> makeClient(unsigned long program, const char* protocol, const char* name,
                                      const std::string& host) {
    return std::make_unique<Client>(program, Programs::Version, protocol, name, host);
}

struct ServiceEntry {
    BoardConnection::clientId id;
    const char* name;
    unsigned long program;
    const char* protocol;
    std::unique_ptr<RPCClient> (*make)(unsigned long, const char*, const char*, const std::string&);
};

// In the order in which the clients are made.
constexpr ServiceEntry kServices[] = {
    {BoardConnection::SETUP, "setup", Programs::Setup, "tcp", makeClient<NormalRPCClient>},
    {BoardConnection::MDIO, "mdio", Programs::MDIO, "udp", makeClient<NormalRPCClient>},
    {BoardConnection::I2C, "i2c", Programs::I2C, "udp", makeClient<NormalRPCClient>},
    {BoardConnection::GPIO, "gpio", Programs::GPIO, "udp", makeClient<NormalRPCClient>},
    {BoardConnection::JTAG, "jtag", Programs::JTAG, "udp", makeClient<NormalRPCClient>},
    {BoardConnection::KEEPALIVE, "keepAlive", Programs::KeepAlive, "udp", makeClient<ThreadSafeRPCClient>},
    {BoardConnection::ADC, "adc", Programs::ADC, "tcp", makeClient<ExtendedRPCClient>},
    {BoardConnection::THERMAL, "thermal", Programs::Thermal, "udp", makeClient<ExtendedRPCClient>},
};

// For the clients that connect when they are made; the extended ones do when they are first used.
PortsAhead portsOfBoard(const std::string& host) {
    return PortsAhead(host, Programs::Version,
                      {{Programs::Setup, IPPROTO_TCP},
                       {Programs::MDIO, IPPROTO_UDP},
                       {Programs::I2C, IPPROTO_UDP},
                       {Programs::GPIO, IPPROTO_UDP},
                       {Programs::JTAG, IPPROTO_UDP},
                       {Programs::KeepAlive, IPPROTO_UDP}});
}

} // namespace

BoardConnection::BoardConnection(std::string boardName)
    : name(std::move(boardName)), interfaceSelected(false) {
    initialize();
}

BoardConnection::BoardConnection(const AddressResponse& board)
    : name(board.name), interfaceSelected(false), host(board.address) {
    initialize();
}

BoardConnection::~BoardConnection() {
    resetHandles();
}

void BoardConnection::initialize() {
    HWIHelper::str_to_upper(name);
    const Diagnostics::BoardScope scope(name);
    std::fill(std::begin(handles), std::end(handles), -1);
    const PortsAhead ports = portsOfBoard(host);
    for (const ServiceEntry& service : kServices)
        clients[service.id] = service.make(service.program, service.protocol, service.name, host);
    selectInterface();
}

void BoardConnection::setupHandles() {}

void BoardConnection::resetHandles() {}

void BoardConnection::selectInterface() {
    interfaceSelected = true;
}

RPCClient* BoardConnection::getClient(clientId id) {
    return clients.at(id).get();
}

void BoardConnection::unlessGivenUp() const {
    if (givenUp_)
        throw Exceptions::NoDevice();
}

void BoardConnection::updateClients() {
    for (const auto& [id, client] : clients) {
        unlessGivenUp();
        client->update(host);
    }
}

void BoardConnection::resetClients() {
    const std::lock_guard<std::mutex> lock(clientsMutex);
    for (const auto& [id, client] : clients)
        client->reset();
}

AddressResponse BoardConnection::findBoard() {
    constexpr unsigned kSearchMs = 4000;
    AddressResponse board;
    if (BoardFinder::findByHostName(name, board)) {
        board.name.clear();
        try {
            BoardFinder::find_ports(name, board);
        } catch (const Exceptions::Standard&) { // the name stays empty
        }
    }
    if (board.name.empty()) {
        FoundBoards found;
        BoardFinder::find(name, found.records, kSearchMs, 0, givenUp_);
        if (found.records.empty())
            throw Exceptions::NoDevice();
        board.assign(found.records.front()->name, found.records.front()->address);
    }
    return board;
}

void BoardConnection::updateAddress() {
    const Diagnostics::BoardScope scope(name);
    const AddressResponse board = findBoard();
    const std::lock_guard<std::mutex> lock(addressMutex);
    if (board.address == host)
        return;
    host = board.address;
    updateClients();
}

int BoardConnection::retrieveConnection() {
    const Diagnostics::BoardScope scope(name);
    constexpr int kPauseMs = 250;
    constexpr std::int32_t kLimit = 60000;
    Diagnostics::error("Retrieve connection to RPC server");
    const Stopwatch stopwatch;
    for (;;) {
        unlessGivenUp();
        try {
            updateAddress();
        } catch (const Exceptions::NoDevice&) { // the board may still answer at its old address
        } catch (const Exceptions::DeviceConnection&) {
        }
        unlessGivenUp();
        HWIHelper::mSleep(kPauseMs);
        Diagnostics::output("Sending ping to RPC");
        try {
            return testServer();
        } catch (const Exceptions::DeviceConnection&) {
            if (static_cast<std::int32_t>(stopwatch.scaledElapsed()) > kLimit)
                throw Exceptions::NoDevice();
        }
    }
}

int BoardConnection::problem() {
    const Diagnostics::BoardScope scope(name);
    const std::lock_guard<std::mutex> lock(problemMutex);
    try {
        return testServer();
    } catch (const Exceptions::DeviceConnection&) {
        return retrieveConnection();
    }
}

int BoardConnection::testServer() {
    const Diagnostics::BoardScope scope(name);
    return pingBoard(*getClient(SETUP));
}

int BoardConnection::pingServer() {
    return testServer();
}

bool BoardConnection::onRPCCallError(clnt_stat status, std::string /*text*/) {
    for (const auto& [id, client] : clients)
        client->resetTimeout();
    if (status < RPC_CANTDECODERES || status > RPC_TIMEDOUT)
        return false;
    problem();
    return true;
}

void BoardConnection::onRPCCallFatalError(clnt_stat status) {
    const Diagnostics::BoardScope scope(name);
    Diagnostics::error("Remote Error:", static_cast<int>(status), "\n  \"",
                       clnt_sperrno(rpc_createerr.cf_stat), "\n\"");
    throw Exceptions::Standard("Remote error.");
}

bool BoardConnection::isLocal() {
    const Diagnostics::BoardScope scope(name);
    std::ifstream file(kLocalBoardFile);
    if (!file) {
        Diagnostics::error("Couldn't read local board file: ", kLocalBoardFile);
        return false;
    }
    std::string line;
    std::getline(file, line);
    for (std::string word : HWIHelper::split(line, " ")) {
        HWIHelper::str_to_upper(word);
        const bool same = word == name;
        Diagnostics::output("  ", word, same ? " == " : " != ", name);
        if (same)
            return true;
    }
    return false;
}

} // namespace Orvane

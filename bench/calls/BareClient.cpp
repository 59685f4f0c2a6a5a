// Each call as libtirpc's functions make it.
#include "bench/calls/BareClient.h"

#include <cerrno>
#include <stdexcept>
#include <sys/socket.h>

namespace OrvaneBench {

using namespace Orvane::Programs;

namespace {

constexpr unsigned kPhy = 3;

unsigned onThisPhy(unsigned address) {
    return (address & 0xFFFFFFU) | kPhy << 24U;
}

} // namespace

BareClient::BareClient(const std::string& host, unsigned long program, const char* protocol)
    : handle_(clnt_create(host.c_str(), static_cast<rpcprog_t>(program), static_cast<rpcvers_t>(Version),
                          protocol)) {
    if (handle_ == nullptr)
        throw std::runtime_error("no bare client of " + host + clnt_spcreateerror(""));
    timeval timeout{2, 0};
    clnt_control(handle_, CLSET_TIMEOUT, reinterpret_cast<char*>(&timeout));
    clnt_control(handle_, CLGET_FD, reinterpret_cast<char*>(&socket_));
    sockaddr_storage board{};
    clnt_control(handle_, CLGET_SERVER_ADDR, reinterpret_cast<char*>(&board));
    if (std::string(protocol) == "udp")
        connect(socket_, reinterpret_cast<const sockaddr*>(&board), sizeof board);
}

BareClient::~BareClient() {
    clnt_destroy(handle_);
}

void BareClient::drain() const noexcept {
    char waste = 0;
    while (recv(socket_, &waste, sizeof waste, MSG_DONTWAIT) >= 0) {
    }
}

void BareClient::require(clnt_stat status) {
    if (status != RPC_SUCCESS)
        throw std::runtime_error(std::string("a bare call failed: ") + clnt_sperrno(status));
}

BareSession::BareSession(BareHandles& handles) : setup_(handles.setup), mdio_(handles.mdio) {
    Open_Param wanted{};
    wanted.byte2 = 1; // simple mode
    wanted.int2 = kPhy;
    Open_Result opened{};
    setup_.call(SetupProcedure::OpenConnection, wanted, opened);
    if (opened.error != 0)
        throw std::runtime_error("the board refuses a bare session");
    identity_ = opened.word1;
}

BareSession::~BareSession() {
    Close_Param param{identity_, 0};
    Simple_Result result{};
    try {
        setup_.call(SetupProcedure::CloseConnection, param, result);
    } catch (const std::exception&) { // the board is gone
    }
}

unsigned BareSession::read(unsigned address) {
    mdio_.drain();
    return readShared(address);
}

unsigned BareSession::readShared(unsigned address) {
    unsigned target = onThisPhy(address);
    unsigned value = 0;
    MDIO_Read_Param param{identity_, {1, &target}};
    MDIO_Read_Result result{0, {1, &value}};
    mdio_.call(MDIOProcedure::Read, param, result);
    if (result.error != 0)
        throw std::runtime_error("the board refuses a bare read");
    return value;
}

void BareSession::readBlock(std::vector<unsigned>& addresses, std::vector<unsigned>& values) {
    const auto length = static_cast<u_int>(addresses.size());
    unsigned runs[] = {0, length}; // a write run goes first
    MDIO_Mixed_Param param{identity_, {0, nullptr}, {0, nullptr}, {length, addresses.data()}, {2, runs}};
    MDIO_Read_Result result{0, {length, values.data()}};
    mdio_.drain();
    mdio_.call(MDIOProcedure::MixedBlock, param, result);
    if (result.error != 0)
        throw std::runtime_error("the board refuses a bare block");
}

BareHandles::BareHandles(const std::string& host)
    : setup(host, Setup, "tcp"),
      mdio(host, MDIO, "udp"),
      i2c(host, I2C, "udp"),
      gpio(host, GPIO, "udp"),
      jtag(host, JTAG, "udp"),
      keepAlive(host, KeepAlive, "udp") {}

} // namespace OrvaneBench

// libtirpc's own server loop around a constant.
#include "bench/simulator/BareServer.h"

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "simulator/engine/Sockets.h"
#include "simulator/network/PrivateNetwork.h"

#include "mdio.h"

#include <array>
#include <csignal>
#include <rpc/rpc.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void dispatch(svc_req* request, SVCXPRT* transport) {
    if (request->rq_proc != SIM_MDIO_READ) {
        svcerr_noproc(transport);
        return;
    }
    // libtirpc's routine types leave the parameters open.
    const auto decode = reinterpret_cast<xdrproc_t>(xdr_sim_MDIO_Read_Param);
    const auto encode = reinterpret_cast<xdrproc_t>(xdr_sim_MDIO_Read_Result);
    sim_MDIO_Read_Param argument{};
    if (!svc_getargs(transport, decode, reinterpret_cast<char*>(&argument))) {
        svcerr_decode(transport);
        return;
    }
    u_int word = BareServer::kAnswer;
    sim_MDIO_Read_Result result{};
    result.data = {1, &word};
    svc_sendreply(transport, encode, reinterpret_cast<char*>(&result));
    svc_freeargs(transport, decode, reinterpret_cast<char*>(&argument));
}

[[noreturn]] void serve(const std::string& address, int portPipe) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    OrvaneSim::PrivateNetwork::joinBoardSide();
    const int socket = ::socket(AF_INET, SOCK_DGRAM, 0);
    const sockaddr_in place = OrvaneSim::endPoint(address, 0);
    std::uint16_t port = 0;
    SVCXPRT* transport = nullptr;
    if (::bind(socket, reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0)
        transport = svcudp_create(socket);
    if (transport && svc_register(transport, SIM_MDIO, SIM_MDIO_VERSION, dispatch, 0)) {
        sockaddr_in bound{};
        socklen_t size = sizeof bound;
        if (::getsockname(socket, reinterpret_cast<sockaddr*>(&bound), &size) == 0)
            port = ntohs(bound.sin_port);
    }
    if (::write(portPipe, &port, sizeof port) == sizeof port && port != 0)
        svc_run();
    ::_exit(1);
}

} // namespace

BareServer::BareServer(const std::string& address) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        throw std::runtime_error("cannot make the bare server's pipe");
    const Orvane::FileDescriptor reading(ends[0]);
    Orvane::FileDescriptor writing(ends[1]);
    if ((process_ = ::fork()) < 0)
        throw std::runtime_error("cannot make the bare server's process");
    if (process_ == 0)
        serve(address, writing.get());
    writing.reset();
    const ssize_t count = ::read(reading.get(), &port_, sizeof port_);
    if (count != sizeof port_ || port_ == 0)
        throw std::runtime_error("the bare server cannot serve");
}

BareServer::~BareServer() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
}

#include "ov_sys/Interface/connection/HandleCreation.h"

#include "ov_sys/Interface/connection/ProgramLookup.h"
#include "ov_sys/Interface/connection/SigpipeGuard.h"

#include <arpa/inet.h>
#include <netconfig.h>

namespace Orvane {
namespace {

// The last step of clnt_create(), over a connected stream or, for RPC_ANYFD, a socket of libtirpc's.
CLIENT* handleOver(int socket, sockaddr_in board, unsigned long program, unsigned long version,
                   const std::string& protocol) {
    netconfig* const transport = getnetconfigent(protocol.c_str());
    if (transport == nullptr) {
        rpc_createerr.cf_stat = RPC_UNKNOWNPROTO;
        return nullptr;
    }
    netbuf address{sizeof board, sizeof board, &board};
    CLIENT* const handle = clnt_tli_create(socket, transport, &address, static_cast<rpcprog_t>(program),
                                           static_cast<rpcvers_t>(version), 0, 0);
    freenetconfigent(transport);
    return handle;
}

CLIENT* createOverStream(sockaddr_in board, unsigned long program, unsigned long version) {
    const Deadline deadline = Deadline::after(std::chrono::seconds(2));
    if (!findByStream(program, version, deadline, board))
        return nullptr;
    FileDescriptor stream = openStream(board, deadline);
    if (!stream)
        return nullptr;
    CLIENT* const handle = handleOver(stream.get(), board, program, version, "tcp");
    if (handle != nullptr) {
        clnt_control(handle, CLSET_FD_CLOSE, nullptr); // the handle's from now on
        stream.release();
    }
    return handle;
}

CLIENT* createOverDatagrams(sockaddr_in board, unsigned long program, unsigned long version) {
    return findByDatagram(program, version, board) ? handleOver(RPC_ANYFD, board, program, version, "udp")
                                                   : nullptr;
}

} // namespace

CLIENT* createHandle(const std::string& host, unsigned long program, unsigned long version,
                     const std::string& protocol) {
    const SigpipeGuard sigpipe;
    sockaddr_in board{};
    board.sin_family = AF_INET;
    if (inet_aton(host.c_str(), &board.sin_addr) == 0)
        return clnt_create(host.c_str(), static_cast<rpcprog_t>(program), static_cast<rpcvers_t>(version),
                           protocol.c_str());
    return protocol == "udp" ? createOverDatagrams(board, program, version)
                             : createOverStream(board, program, version);
}

} // namespace Orvane

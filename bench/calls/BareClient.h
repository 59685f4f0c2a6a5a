// What a careful user would write without the library: bare libtirpc clients of one board.
#pragma once

#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"

#include <rpc/rpc.h>
#include <string>
#include <vector>

namespace OrvaneBench {

// One libtirpc handle for one program. Failures of any kind throw std::runtime_error.
class BareClient {
public:
    BareClient(const std::string& host, unsigned long program, const char* protocol);
    ~BareClient();
    BareClient(const BareClient&) = delete;
    BareClient& operator=(const BareClient&) = delete;

    // Throws late replies of earlier calls away, which libtirpc would otherwise stumble over.
    void drain() const noexcept;

    // One clnt_call() on the library's records; `result` is as the caller preset it.
    template <class Procedure, class Param, class Result>
    void call(Procedure procedure, Param& param, Result& result) {
        constexpr timeval kTimeout{2, 0};
        require(clnt_call(handle_, static_cast<rpcproc_t>(procedure), Orvane::xdrProcedure<Param>, &param,
                          Orvane::xdrProcedure<Result>, &result, kTimeout));
    }

private:
    static void require(clnt_stat status);

    CLIENT* handle_;
    int socket_ = -1;
};

// The six handles that a session of the library holds, without anything else.
struct BareHandles {
    explicit BareHandles(const std::string& host);

    BareClient setup, mdio, i2c, gpio, jtag, keepAlive;
};

// A session opened by hand on port 0 of a board, PHY 3, for MDIO reads; the handles stay the caller's. One
// thread, but for readShared().
class BareSession {
public:
    explicit BareSession(BareHandles& handles);
    ~BareSession();
    BareSession(const BareSession&) = delete;
    BareSession& operator=(const BareSession&) = delete;

    // One register; the socket is drained before.
    unsigned read(unsigned address);
    // The same without the drain, so that several threads may share the handle.
    unsigned readShared(unsigned address);
    // Addresses are read in one mixed block; the values go where the caller says.
    void readBlock(std::vector<unsigned>& addresses, std::vector<unsigned>& values);

private:
    BareClient& setup_;
    BareClient& mdio_;
    unsigned identity_ = 0;
};

} // namespace OrvaneBench

// A bare server: what rpcgen and libtirpc give, answering every register read with one constant.
#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>

// A process of its own on the board side of the private network, where boards are served, too. It ends with
// this object, or with its parent.
class BareServer {
public:
    // Word that every read is answered with.
    static constexpr unsigned kAnswer = 0xCAFE;

    // Serves the MDIO program over UDP at a dotted address. To be made before the process has a second
    // thread. Throws std::runtime_error.
    explicit BareServer(const std::string& address);
    ~BareServer();
    BareServer(const BareServer&) = delete;
    BareServer& operator=(const BareServer&) = delete;

    std::uint16_t port() const { return port_; }

private:
    pid_t process_ = -1;
    std::uint16_t port_ = 0;
};

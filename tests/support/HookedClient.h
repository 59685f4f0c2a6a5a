// RPC clients that let a test look into, or interfere with, the calls made through them.
#pragma once

#include "ov_sys/Interface/connection/BoardConnection.h"

#include <functional>
#include <memory>
#include <utility>

namespace OrvaneTest {

// Calls `onBusy` whenever a call frame marks it busy (true, before a call) or free again (false, when it must
// not throw). Runs on the calling thread; set the hook before calls begin.
template <class Kind>
class HookedClient : public Kind {
public:
    using Kind::Kind;
    std::function<void(bool)> onBusy;

    void setBusy(bool calling) override {
        Kind::setBusy(calling);
        if (onBusy)
            onBusy(calling);
    }
};

// Puts a hooked client of that kind into the place of a connection's client, with the same host, and connects
// it as its kind does. The connection owns it.
template <class Kind = Orvane::NormalRPCClient>
HookedClient<Kind>& hookClient(Orvane::BoardConnection& connection, Orvane::BoardConnection::clientId id) {
    const Orvane::RPCClient& old = *connection.getClient(id);
    auto hooked =
        std::make_unique<HookedClient<Kind>>(old.program, old.version, old.protocol, old.name, old.host);
    HookedClient<Kind>& result = *hooked;
    connection.clients[id] = std::move(hooked);
    return result;
}

} // namespace OrvaneTest

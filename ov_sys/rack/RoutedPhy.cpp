// Which way a register is reached, and what is told when the way breaks off.
#include "ov_sys/rack/RoutedPhy.h"

#include "ov_sys/rack/access/PathAccess.h"
#include "ov_sys/rack/core/OpenSession.h"
#include "ov_sys/routing/Route.h"

#include <optional>
#include <string>
#include <utility>

namespace Orvane {

using RackAccess::PathAccess;
using RackLink::Limits;
using RackLink::Trouble;
using Routing::Route;

namespace {

const char* byWay(Route route) noexcept {
    switch (route) {
    case Route::OverClause22:
        return " over Clause 22";
    case Route::Mailbox:
        return " by firmware";
    case Route::Tge:
        return " by TGE registers";
    case Route::Window:
        return " by window";
    case Route::Serdes:
        return " by SerDes bridge";
    case Route::Paged:
        return " by pages";
    case Route::Plain:
        break;
    }
    return "";
}

// One call: its checks, the board's turn, and the failure of what does not end well.
class Routed {
public:
    Routed(RackCore::OpenSession& session, const RegisterPaths& paths, std::string operation,
           RegisterAddress address, const Within& within)
        : session_(session),
          paths_(paths),
          operation_(std::move(operation)),
          address_(address),
          limits_(within) {}

    void check(std::uint32_t value) const {
        session_.object(operation_.c_str(), address_, value, limits_);
        if (address_.space != RegisterAddress::Space::Clause45)
            fail(FailureKind::InvalidArgument, "Paths lead to Clause 45 registers.");
        if (paths_.overClause22 && session_.target().overSmbus())
            fail(FailureKind::InvalidArgument, "An SMBus port has no Clause 22 registers.");
    }

    std::uint32_t read() {
        const Route route = paths_.overClause22
                                ? Route::OverClause22
                                : Routing::routeOfRead(paths_.byFirmware, address_.mmd, address_.number);
        begin(route);
        for (;;) {
            PathAccess path(session_.target(), limits_);
            const Routing::Value value = Routing::read(path, route, address_.mmd, address_.number);
            if (!value)
                fail(path.trouble(), path.remark());
            if (!path.torn())
                return *value;
        }
    }

    void write(std::uint32_t value) {
        const Route route = paths_.overClause22 ? Route::OverClause22
                                                : Routing::routeOfWrite(paths_.byFirmware, address_.mmd);
        begin(route);
        for (unsigned times = 0;; ++times) {
            PathAccess path(session_.target(), limits_);
            if (!Routing::write(path, route, address_.mmd, address_.number, value))
                fail(path.trouble(), path.remark());
            if (!path.torn())
                return;
            if (times >= limits_.within.repeat.writes)
                fail(FailureKind::LostSession,
                     "The session was lost on the way; the write may be incomplete.");
        }
    }

private:
    void begin(Route route) {
        way_ = byWay(route);
        if (turn_)
            return;
        if (const Trouble busy = takeTurn(session_.link(), limits_))
            fail(busy, {});
        turn_.emplace(session_.link().turn);
    }

    [[noreturn]] void fail(Trouble trouble, std::string why) const {
        throw session_.failure(trouble, (operation_ + way_).c_str(), toText(address_), limits_,
                               std::move(why));
    }

    RackCore::OpenSession& session_;
    const RegisterPaths& paths_;
    const std::string operation_;
    const RegisterAddress address_;
    Limits limits_;
    const char* way_ = "";
    std::optional<RackLink::TurnGuard> turn_;
};

} // namespace

RoutedPhy::RoutedPhy(std::shared_ptr<RackCore::OpenSession> session, const RegisterPaths& paths) noexcept
    : session_(std::move(session)), paths_(paths) {}

std::uint32_t RoutedPhy::read(RegisterAddress address, const Within& within) const {
    Routed call(*session_, paths_, "read", address, within);
    call.check(0);
    return call.read();
}

void RoutedPhy::write(RegisterAddress address, std::uint32_t value, const Within& within) const {
    Routed call(*session_, paths_, "write", address, within);
    call.check(value);
    call.write(value);
}

std::uint32_t RoutedPhy::modify(RegisterAddress address, std::uint32_t mask, std::uint32_t value,
                                const Within& within) const {
    Routed call(*session_, paths_, "modify", address, within);
    call.check(mask | value);
    const std::uint32_t changed = (call.read() & ~mask) | (value & mask);
    call.write(changed);
    return changed;
}

} // namespace Orvane

// Each operation of a PHY, by the caller's thread until its deadline.
#include "ov_sys/rack/Phy.h"

#include "ov_sys/rack/access/ListRead.h"
#include "ov_sys/rack/core/OpenSession.h"
#include "ov_sys/rack/link/Drive.h"

#include <utility>

namespace Orvane {

using RackLink::Limits;
using RackLink::Trouble;

Phy::Phy(std::shared_ptr<RackCore::OpenSession> session) noexcept : session_(std::move(session)) {}

unsigned Phy::id() const noexcept {
    return session_->state().phy;
}

std::uint32_t Phy::read(RegisterAddress address, const Within& within) const {
    Limits limits(within);
    session_->object("read", address, 0, limits);
    std::uint32_t value = 0;
    if (const Trouble trouble = RackAccess::read(session_->target(), address, value, limits))
        throw session_->failure(trouble, "read", toText(address), limits);
    return value;
}

void Phy::write(RegisterAddress address, std::uint32_t value, const Within& within) const {
    Limits limits(within);
    session_->object("write", address, value, limits);
    if (const Trouble trouble = RackAccess::write(session_->target(), address, value, limits))
        throw session_->failure(trouble, "write", toText(address), limits);
}

std::uint32_t Phy::modify(RegisterAddress address, std::uint32_t mask, std::uint32_t value,
                          const Within& within) const {
    Limits limits(within);
    session_->object("modify", address, mask | value, limits);
    const RackAccess::Target target = session_->target();
    std::uint32_t word = 0;
    Trouble trouble = takeTurn(target.link, limits);
    if (!trouble) {
        const RackLink::TurnGuard turn(target.link.turn);
        trouble = RackAccess::read(target, address, word, limits);
        word = (word & ~mask) | (value & mask);
        if (!trouble)
            trouble = RackAccess::write(target, address, word, limits);
    }
    if (trouble)
        throw session_->failure(trouble, "modify", toText(address), limits);
    return word;
}

namespace {

// `list`: what Batch::read() takes.
template <class... List>
std::vector<std::uint32_t> readAll(const Phy& phy, RackCore::OpenSession& session, const Within& within,
                                   const List&... list) {
    Limits limits(within);
    RackAccess::ListRead usual;
    Trouble trouble;
    const bool taken = usual.take(session.target(), within.repeat, list...);
    if (taken)
        trouble = drive(session.link(), usual.call(), limits);
    if (taken && !trouble)
        return std::move(usual.values);
    Batch batch;
    const Batch::Readings all = batch.read(list...);
    if (!taken)
        return phy.run(batch, within)[all];
    throw session.failure(trouble, "batch", "from " + toText(batch.operations().front().address), limits);
}

} // namespace

std::vector<std::uint32_t> Phy::read(RegisterAddress first, std::size_t count, const Within& within) const {
    return readAll(*this, *session_, within, first, count);
}

std::vector<std::uint32_t> Phy::read(const std::vector<RegisterAddress>& addresses,
                                     const Within& within) const {
    return readAll(*this, *session_, within, addresses);
}

BatchResult Phy::run(const Batch& batch, const Within& within) const {
    Limits limits(within);
    for (const Batch::Operation& one : batch.operations())
        session_->object(one.writes ? "write" : "read", one.address, one.value, limits);
    std::vector<OperationOutcome> outcomes;
    std::size_t failed = 0;
    const Trouble trouble = RackAccess::run(session_->target(), batch.operations(), outcomes, failed, limits);
    if (!trouble)
        return {std::move(outcomes), std::nullopt};
    return {
        std::move(outcomes),
        session_->failure(trouble, "batch", "from " + toText(batch.operations()[failed].address), limits)};
}

void Phy::together(const std::function<void()>& work, const Within& within) const {
    Limits limits(within);
    RackLink::BoardLink& link = session_->link();
    session_->check(takeTurn(link, limits), "wait for the board's turn", {}, limits);
    const RackLink::TurnGuard turn(link.turn);
    work();
}

Failure Phy::refusal(const char* operation, const std::string& location, std::string why) const {
    const Within none;
    return session_->failure(FailureKind::InvalidArgument, operation, location, Limits(none), std::move(why));
}

void Phy::setMap(std::shared_ptr<const RegisterMap> map) const {
    session_->setMap(std::move(map));
}

std::shared_ptr<const RegisterMap> Phy::usedMap() const {
    return session_->map();
}

void Phy::open(const Within& within) const {
    Limits limits(within);
    session_->open(limits);
}

void Phy::close(const Within& within) const {
    Limits limits(within);
    session_->close(limits);
}

bool Phy::isOpen() const {
    return session_->isOpen();
}

std::uint16_t Phy::key() const {
    return session_->key();
}

void Phy::onReopen(std::function<void()> hook) const {
    session_->setHook(std::move(hook));
}

void Phy::onReopen(std::function<void(const Phy&)> hook) const {
    if (!hook)
        return session_->setHook({});
    const std::weak_ptr<RackCore::OpenSession> session = session_; // which owns the hook
    session_->setHook([session, hook = std::move(hook)] {
        if (std::shared_ptr<RackCore::OpenSession> held = session.lock())
            hook(Phy(std::move(held)));
    });
}

void Phy::onReopen(std::nullptr_t) const {
    session_->setHook({});
}

void Phy::setSmbusProtocol(SmbusProtocol protocol) const noexcept {
    session_->setSmbus(protocol);
}

} // namespace Orvane

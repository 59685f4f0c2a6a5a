// Which call reads or writes a register, in each space and on each kind of port.
#include "ov_sys/rack/access/RegisterAccess.h"

#include "ov_sys/rack/access/Blocks.h"
#include "ov_sys/rack/access/SmbusAccess.h"
#include "ov_sys/rack/link/MdioCalls.h"

namespace Orvane::RackAccess {

using namespace RackLink;

std::string objection(const Target& target, const RegisterAddress& address, std::uint32_t value) {
    if (!address.valid())
        return address.space == RegisterAddress::Space::Clause22
                   ? "Clause 22 registers are 0 to 31."
                   : "MMDs are 0 to 31, their registers 0 to 65535.";
    if (value > address.limit())
        return "The register holds 16 bits.";
    if (target.overSmbus() && address.space == RegisterAddress::Space::Clause22)
        return "An SMBus port has no Clause 22 registers.";
    return {};
}

namespace {

using State = OperationOutcome::State;

inline Trouble readOne(const Target& target, const RegisterAddress& address, std::uint32_t& value,
                       Limits& limits) {
    if (target.overSmbus()) {
        SmbusTransfers transfers(target, address);
        const Trouble trouble = run(target, transfers, limits);
        value = transfers.value();
        return trouble;
    }
    u_int word = addressWord(target.session, address);
    const Effect effect = limits.within.repeat.reads == 0 ? Effect::Alone : Effect::Reads;
    ReadCall call(proceduresOf(address.space).read, effect, target.session, &value, 1);
    call.argument.addresses = {1, &word};
    return drive(target.link, call, limits);
}

Trouble writeOne(const Target& target, const RegisterAddress& address, std::uint32_t value, Limits& limits) {
    if (target.overSmbus()) {
        SmbusTransfers transfers(target, address, value);
        return run(target, transfers, limits);
    }
    u_int word = addressWord(target.session, address);
    const Effect effect = limits.within.repeat.writes == 0 ? Effect::Alone : Effect::Writes;
    WriteCall call(Program::Mdio, static_cast<std::uint32_t>(proceduresOf(address.space).write), effect);
    call.session = &target.session;
    call.room = kRoomOfOne;
    call.argument.addresses = {1, &word};
    call.argument.values = {1, &value};
    return drive(target.link, call, limits);
}

// One after the other, for buses without blocks.
Trouble runSingly(const Target& target, const std::vector<Batch::Operation>& operations,
                  std::vector<OperationOutcome>& outcomes, std::size_t& failed, Limits& limits) {
    outcomes.assign(operations.size(), {});
    for (failed = 0; failed < operations.size(); ++failed) {
        const Batch::Operation& one = operations[failed];
        OperationOutcome& outcome = outcomes[failed];
        const unsigned before = limits.attempts;
        outcome.value = one.value;
        const Trouble trouble = one.writes ? writeOne(target, one.address, one.value, limits)
                                           : readOne(target, one.address, outcome.value, limits);
        if (trouble) {
            outcome = outcomeOf(trouble, limits.attempts != before);
            return trouble;
        }
        outcome.state = State::Done;
    }
    return {};
}

} // namespace

Trouble read(const Target& target, const RegisterAddress& address, std::uint32_t& value, Limits& limits) {
    if (!target.link.log().on())
        return readOne(target, address, value, limits);
    const Trouble trouble = readOne(target, address, value, limits);
    target.link.log().access(target.place(), {address, value, false}, trouble);
    return trouble;
}

Trouble write(const Target& target, const RegisterAddress& address, std::uint32_t value, Limits& limits) {
    if (!target.link.log().on())
        return writeOne(target, address, value, limits);
    const Trouble trouble = writeOne(target, address, value, limits);
    target.link.log().access(target.place(), {address, value, true}, trouble);
    return trouble;
}

OperationOutcome outcomeOf(Trouble trouble, bool sent) noexcept {
    if (trouble.kind() == FailureKind::BoardError)
        return {State::Refused, 0, trouble.code()};
    return {sent ? State::Unknown : State::NotSent, 0, 0};
}

Trouble run(const Target& target, const std::vector<Batch::Operation>& operations,
            std::vector<OperationOutcome>& outcomes, std::size_t& failed, Limits& limits) {
    const Trouble trouble = target.overSmbus() ? runSingly(target, operations, outcomes, failed, limits)
                                               : runBlocks(target, operations, outcomes, failed, limits);
    if (target.link.log().on())
        target.link.log().batch(target.place(), operations, outcomes, failed, trouble);
    return trouble;
}

} // namespace Orvane::RackAccess

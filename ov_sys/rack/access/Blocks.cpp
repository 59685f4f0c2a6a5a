#include "ov_sys/rack/access/Blocks.h"

#include "ov_sys/rack/link/MdioCalls.h"

#include <algorithm>
#include <memory>

namespace Orvane::RackAccess {
namespace {

using namespace RackLink;
using Operations = std::vector<Batch::Operation>;
using State = OperationOutcome::State;
using Words = std::vector<u_int>;

// One block: operations [first, first + count) of a batch, of one register space, and the call that does
// them.
class Block {
public:
    Block(const Target& target, const Operations& operations, std::size_t first, const Repeat& repeat);

    Call& call() noexcept { return *call_; }
    bool writes() const noexcept { return !data_.empty(); }
    std::size_t first() const noexcept { return first_; }
    std::size_t end() const noexcept { return first_ + count_; }

    // What became of its operations, the call being done.
    void store(const Operations& operations, std::vector<OperationOutcome>& outcomes) const;

private:
    static std::size_t length(const Operations& operations, std::size_t first) noexcept;
    void gather(const Target& target, const Operations& operations);
    std::unique_ptr<Call> listed(const Target& target, Effect effect);
    std::unique_ptr<Call> mixed(const Target& target, MdioProcedures procedures, Effect effect);

    std::size_t first_;
    std::size_t count_;
    Words writeAddresses_;
    Words data_;
    Words readAddresses_;
    Words runs_; // lengths of runs, writes and reads by turns, writes first
    Words values_;
    std::unique_ptr<Call> call_;
};

template <class Counted>
void point(Counted& list, Words& words) noexcept {
    list = {static_cast<u_int>(words.size()), words.data()};
}

Block::Block(const Target& target, const Operations& operations, std::size_t first, const Repeat& repeat)
    : first_(first), count_(length(operations, first)) {
    gather(target, operations);
    values_.resize(readAddresses_.size());
    const bool once = (writes() ? repeat.writes : repeat.reads) == 0;
    const Effect effect = once ? Effect::Alone : writes() ? Effect::Writes : Effect::Reads;
    const RegisterAddress::Space space = operations[first].address.space;
    const bool uniform = readAddresses_.empty() || !writes();
    // Lists have a procedure of their own in Clause 45 only; elsewhere a list of one is a single access.
    call_ = uniform && (space == RegisterAddress::Space::Clause45)
                ? listed(target, effect)
                : mixed(target, proceduresOf(space), effect);
    call_->session = &target.session;
}

std::size_t Block::length(const Operations& operations, std::size_t first) noexcept {
    const std::size_t most = std::min(operations.size() - first, kLongestBlock);
    std::size_t count = 1;
    while (count < most && operations[first + count].address.space == operations[first].address.space)
        ++count;
    return count;
}

void Block::gather(const Target& target, const Operations& operations) {
    runs_.push_back(0);
    for (std::size_t i = first_; i < end(); ++i) {
        const Batch::Operation& one = operations[i];
        const bool inWrites = runs_.size() % 2 == 1;
        if (one.writes != inWrites)
            runs_.push_back(0);
        ++runs_.back();
        (one.writes ? writeAddresses_ : readAddresses_).push_back(addressWord(target.session, one.address));
        if (one.writes)
            data_.push_back(one.value);
    }
}

std::unique_ptr<Call> Block::listed(const Target& target, Effect effect) {
    if (!writes()) {
        auto call = std::make_unique<ReadCall>(Programs::MDIOProcedure::Read, effect, target.session,
                                               values_.data(), values_.size());
        point(call->argument.addresses, readAddresses_);
        return call;
    }
    auto call = std::make_unique<WriteCall>(
        Program::Mdio, static_cast<std::uint32_t>(Programs::MDIOProcedure::Write), effect);
    point(call->argument.addresses, writeAddresses_);
    point(call->argument.values, data_);
    return call;
}

std::unique_ptr<Call> Block::mixed(const Target& target, MdioProcedures procedures, Effect effect) {
    auto call =
        std::make_unique<MixedCall>(procedures.mixed, effect, target.session, values_.data(), values_.size());
    point(call->argument.words1, data_);
    point(call->argument.words2, writeAddresses_);
    point(call->argument.words3, readAddresses_);
    point(call->argument.words4, runs_);
    return call;
}

void Block::store(const Operations& operations, std::vector<OperationOutcome>& outcomes) const {
    const Trouble trouble = call_->trouble;
    std::size_t read = 0;
    for (std::size_t i = first_; i < end(); ++i) {
        OperationOutcome& outcome = outcomes[i];
        if (!trouble)
            outcome = {State::Done, operations[i].writes ? operations[i].value : values_[read++], 0};
        else if (trouble.kind() == FailureKind::BoardError)
            outcome = {State::Refused, 0, trouble.code()};
        else
            outcome.state = call_->everSent ? State::Unknown : State::NotSent;
    }
}

} // namespace

Trouble runBlocks(const Target& target, const Operations& operations, std::vector<OperationOutcome>& outcomes,
                  std::size_t& failed, Limits& limits) {
    constexpr std::size_t kTogether = 16; // more than are in flight at a time
    if (const Trouble busy = takeTurn(target.link, limits))
        return busy;
    const TurnGuard turn(target.link.turn); // nobody comes between the blocks
    for (std::size_t next = 0; next < operations.size();) {
        std::vector<std::unique_ptr<Block>> blocks;
        std::vector<Call*> calls;
        while (next < operations.size() && blocks.size() < kTogether) {
            auto block = std::make_unique<Block>(target, operations, next, limits.within.repeat);
            const bool writes = block->writes();
            if (writes && !blocks.empty())
                break;
            next = block->end();
            calls.push_back(&block->call());
            blocks.push_back(std::move(block));
            if (writes)
                break;
        }
        drive(target.link, calls.data(), calls.size(), limits);
        Trouble trouble;
        for (const auto& block : blocks) {
            block->store(operations, outcomes);
            if (block->call().trouble && !trouble) {
                trouble = block->call().trouble;
                failed = block->first();
            }
        }
        if (trouble)
            return trouble;
    }
    return {};
}

} // namespace Orvane::RackAccess

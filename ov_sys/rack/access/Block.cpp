// The records of a block, and where the values of its reply go.
#include "ov_sys/rack/access/Block.h"

#include <algorithm>
#include <cstddef>

namespace Orvane::RackAccess {

using namespace RackLink;

namespace {

using State = OperationOutcome::State;
using Words = std::vector<u_int>;

template <class Counted>
void point(Counted& list, Words& words) noexcept {
    list = {static_cast<u_int>(words.size()), words.data()};
}

} // namespace

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
    const std::size_t words = data_.size() + writeAddresses_.size() + readAddresses_.size() + runs_.size();
    call_->room = static_cast<std::uint32_t>(kRoomOfOne + words * sizeof(u_int));
}

std::size_t Block::length(const Operations& operations, std::size_t first) noexcept {
    const std::size_t most = std::min(operations.size() - first, kLongestBlock);
    std::size_t count = 1;
    while (count < most && operations[first + count].address.space == operations[first].address.space)
        ++count;
    return count;
}

void Block::gather(const Target& target, const Operations& operations) {
    const auto begin = operations.begin() + static_cast<std::ptrdiff_t>(first_);
    const auto isWrite = [](const Batch::Operation& one) { return one.writes; };
    const auto writes =
        static_cast<std::size_t>(std::count_if(begin, begin + static_cast<std::ptrdiff_t>(count_), isWrite));
    writeAddresses_.reserve(writes);
    data_.reserve(writes);
    readAddresses_.reserve(count_ - writes);
    if (writes == 0) {
        runs_ = {0, static_cast<u_int>(count_)};
        readAddresses_.resize(count_);
        std::transform(begin, begin + static_cast<std::ptrdiff_t>(count_), readAddresses_.begin(),
                       [&](const Batch::Operation& one) { return addressWord(target.session, one.address); });
        return;
    }
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
    if (!trouble && !writes()) { // nearly always
        for (std::size_t i = 0; i < count_; ++i)
            outcomes[first_ + i] = {State::Done, values_[i], 0};
        return;
    }
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

} // namespace Orvane::RackAccess

// A list of register accesses that a board carries out in one call.
#pragma once

#include "ov_sys/rack/access/RegisterAccess.h"
#include "ov_sys/rack/link/MdioCalls.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace Orvane::RackAccess {

// One block: operations [first, first + count) of a batch, of one register space, and the call that does
// them.
class Block {
public:
    using Operations = std::vector<Batch::Operation>;

    // As many operations from `first` on as one call takes.
    Block(const Target& target, const Operations& operations, std::size_t first, const Repeat& repeat);

    RackLink::Call& call() noexcept { return *call_; }
    bool writes() const noexcept { return !data_.empty(); }
    std::size_t first() const noexcept { return first_; }
    std::size_t end() const noexcept { return first_ + count_; }

    // What became of its operations, the call being done.
    void store(const Operations& operations, std::vector<OperationOutcome>& outcomes) const;

private:
    static std::size_t length(const Operations& operations, std::size_t first) noexcept;
    void gather(const Target& target, const Operations& operations);
    std::unique_ptr<RackLink::Call> listed(const Target& target, RackLink::Effect effect);
    std::unique_ptr<RackLink::Call> mixed(const Target& target, RackLink::MdioProcedures procedures,
                                          RackLink::Effect effect);

    std::size_t first_;
    std::size_t count_;
    std::vector<u_int> writeAddresses_;
    std::vector<u_int> data_;
    std::vector<u_int> readAddresses_;
    std::vector<u_int> runs_; // lengths of runs, writes and reads by turns, writes first
    std::vector<u_int> values_;
    std::unique_ptr<RackLink::Call> call_;
};

} // namespace Orvane::RackAccess

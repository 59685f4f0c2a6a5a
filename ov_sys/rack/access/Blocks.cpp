// Which blocks go out together, and what has been done when one fails.
#include "ov_sys/rack/access/Blocks.h"

#include "ov_sys/rack/access/Block.h"

#include <memory>
#include <utility>

namespace Orvane::RackAccess {

using namespace RackLink;

BlockRun::BlockRun(const Target& target, const std::vector<Batch::Operation>& operations,
                   const Repeat& repeat)
    : target_(target), operations_(operations), repeat_(repeat) {
    outcomes.resize(operations.size());
}

BlockRun::~BlockRun() = default;

void BlockRun::next(std::vector<Call*>& calls) {
    constexpr std::size_t kTogether = 16; // more than are in flight at a time
    store();
    blocks_.clear();
    blocks_.reserve(kTogether);
    while (next_ < operations_.size() && blocks_.size() < kTogether) {
        auto block = std::make_unique<Block>(target_, operations_, next_, repeat_);
        const bool writes = block->writes();
        if (writes && !blocks_.empty())
            return;
        next_ = block->end();
        calls.push_back(&block->call());
        blocks_.push_back(std::move(block));
        if (writes)
            return;
    }
}

void BlockRun::store() {
    for (const auto& block : blocks_) {
        if (block->call().trouble && !trouble_) {
            trouble_ = block->call().trouble;
            failed = block->first();
        }
        block->store(operations_, outcomes);
    }
}

Trouble runBlocks(const Target& target, const std::vector<Batch::Operation>& operations,
                  std::vector<OperationOutcome>& outcomes, std::size_t& failed, Limits& limits) {
    if (const Trouble busy = takeTurn(target.link, limits)) {
        outcomes.assign(operations.size(), {});
        return busy;
    }
    const TurnGuard turn(target.link.turn); // nobody comes between the blocks
    BlockRun run(target, operations, limits.within.repeat);
    Trouble trouble;
    for (std::vector<Call*> calls; !trouble; calls.clear()) {
        run.next(calls);
        if (calls.empty())
            break;
        drive(target.link, calls.data(), calls.size(), limits);
        for (const Call* const call : calls)
            if (call->trouble && !trouble)
                trouble = call->trouble;
    }
    run.store();
    failed = run.failed;
    outcomes = std::move(run.outcomes);
    return trouble;
}

} // namespace Orvane::RackAccess

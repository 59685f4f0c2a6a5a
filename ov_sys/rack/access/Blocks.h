// Lists of register accesses, cut into the blocks that a board carries out in one call.
#pragma once

#include "ov_sys/rack/access/RegisterAccess.h"

#include <memory>
#include <vector>

namespace Orvane::RackAccess {

class Block;

// The blocks of a batch, over MDIO. Those that only read are in flight together; one that writes waits for
// those before it, and what follows it for its success. One thread.
class BlockRun {
public:
    // `operations` must outlive the run.
    BlockRun(const Target& target, const std::vector<Batch::Operation>& operations, const Repeat& repeat);
    ~BlockRun();
    BlockRun(const BlockRun&) = delete;
    BlockRun& operator=(const BlockRun&) = delete;

    // Adds the calls of the next blocks, those before them being done; none at the end. Those calls stay
    // until the next time.
    void next(std::vector<RackLink::Call*>& calls);
    // Takes what the last calls came to.
    void store();

    std::vector<OperationOutcome> outcomes;
    std::size_t failed = 0; // first operation of the first block that failed

private:
    const Target target_;
    const std::vector<Batch::Operation>& operations_;
    const Repeat repeat_;
    std::vector<std::unique_ptr<Block>> blocks_;
    std::size_t next_ = 0;
    RackLink::Trouble trouble_;
};

// As run(), by the calling thread.
RackLink::Trouble runBlocks(const Target& target, const std::vector<Batch::Operation>& operations,
                            std::vector<OperationOutcome>& outcomes, std::size_t& failed,
                            RackLink::Limits& limits);

} // namespace Orvane::RackAccess

// Register accesses as jobs, whose ends are told as values or failures.
#pragma once

#include "ov_sys/rack/access/Blocks.h"
#include "ov_sys/rack/access/ListRead.h"
#include "ov_sys/rack/access/SmbusAccess.h"
#include "ov_sys/rack/core/Job.h"
#include "ov_sys/rack/link/MdioCalls.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace Orvane::RackCore {

// Reads or writes one register. Told: the value read or written.
class RegisterJob : public Job {
public:
    using Told = std::function<void(std::uint32_t value, std::optional<Failure> failure)>;

    // `value` empty: a read.
    RegisterJob(std::shared_ptr<OpenSession> target, const Within& said, RegisterAddress address,
                std::optional<std::uint32_t> value, Told told);

    void next(std::vector<RackLink::Call*>& list) override;
    void settle(RackLink::Trouble trouble) override;
    bool alone() const noexcept override { return transfers_ != nullptr; }

private:
    std::unique_ptr<RackLink::Call> mdioCall();

    const RegisterAddress address_;
    const bool writes_;
    u_int word_ = 0; // the register, as its board takes it
    u_int value_ = 0;
    std::unique_ptr<RackLink::Call> call_;                  // on an MDIO port
    std::unique_ptr<RackAccess::SmbusTransfers> transfers_; // on an SMBus port
    bool begun_ = false;
    const Told told_;
};

// Reads a usual list. Told: its values, or why there are none.
class ListJob : public Job {
public:
    using Told = std::function<void(std::vector<std::uint32_t> values, std::optional<Failure> failure)>;

    ListJob(std::shared_ptr<OpenSession> target, const Within& said, RegisterAddress first, Told told)
        : Job(std::move(target), said), first_(first), told_(std::move(told)) {}

    // To be used only if this is true.
    bool take(std::size_t count) { return list_.take(session->target(), within.repeat, first_, count); }

    void next(std::vector<RackLink::Call*>& list) override;
    void settle(RackLink::Trouble trouble) override;

private:
    const RegisterAddress first_;
    RackAccess::ListRead list_;
    bool begun_ = false;
    const Told told_;
};

// Runs a batch on an MDIO port. Told: its outcomes.
class BatchJob : public Job {
public:
    using Told = std::function<void(BatchResult result)>;

    BatchJob(std::shared_ptr<OpenSession> target, const Within& said, Batch batch, Told told);

    void next(std::vector<RackLink::Call*>& list) override { run_.next(list); }
    void settle(RackLink::Trouble trouble) override;
    // The calls of one that only reads may fly with others.
    bool alone() const noexcept override { return writes_; }

private:
    const Batch batch_;
    const bool writes_;
    RackAccess::BlockRun run_;
    const Told told_;
};

// Runs a batch on an SMBus port, one access after the other. Told: its outcomes.
class SmbusBatchJob : public Job {
public:
    SmbusBatchJob(std::shared_ptr<OpenSession> target, const Within& said, Batch batch, BatchJob::Told told);

    void next(std::vector<RackLink::Call*>& list) override;
    void settle(RackLink::Trouble trouble) override;
    bool alone() const noexcept override { return true; }

private:
    void begin(const Batch::Operation& operation);

    const Batch batch_;
    std::vector<OperationOutcome> outcomes_;
    std::size_t at_ = 0;      // operation under way
    unsigned sentBefore_ = 0; // requests, for those before it
    std::unique_ptr<RackAccess::SmbusTransfers> transfers_;
    const BatchJob::Told told_;
};

// The job of a batch on the port that the session is of.
std::unique_ptr<Job> jobOf(std::shared_ptr<OpenSession> target, const Within& said, Batch batch,
                           BatchJob::Told told);

} // namespace Orvane::RackCore

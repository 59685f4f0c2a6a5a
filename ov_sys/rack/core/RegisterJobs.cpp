// Which call a job makes next, and what it makes of the answer.
#include "ov_sys/rack/core/RegisterJobs.h"

#include <algorithm>
#include <utility>

namespace Orvane::RackCore {

using namespace RackLink;

RegisterJob::RegisterJob(std::shared_ptr<OpenSession> target, const Within& said, RegisterAddress address,
                         std::optional<std::uint32_t> value, Told told)
    : Job(std::move(target), said),
      address_(address),
      writes_(value.has_value()),
      value_(value.value_or(0)),
      told_(std::move(told)) {
    const RackAccess::Target here = session->target();
    if (!here.overSmbus())
        call_ = mdioCall();
    else if (writes_)
        transfers_ = std::make_unique<RackAccess::SmbusTransfers>(here, address_, value_);
    else
        transfers_ = std::make_unique<RackAccess::SmbusTransfers>(here, address_);
}

std::unique_ptr<Call> RegisterJob::mdioCall() {
    const MdioProcedures procedures = proceduresOf(address_.space);
    word_ = addressWord(session->state(), address_);
    if (!writes_) {
        const Effect effect = within.repeat.reads == 0 ? Effect::Alone : Effect::Reads;
        auto call = std::make_unique<ReadCall>(procedures.read, effect, session->state(), &value_, 1);
        call->argument.addresses = {1, &word_};
        return call;
    }
    const Effect effect = within.repeat.writes == 0 ? Effect::Alone : Effect::Writes;
    auto call =
        std::make_unique<WriteCall>(Program::Mdio, static_cast<std::uint32_t>(procedures.write), effect);
    call->session = &session->state();
    call->room = kRoomOfOne;
    call->argument.addresses = {1, &word_};
    call->argument.values = {1, &value_};
    return call;
}

void RegisterJob::next(std::vector<Call*>& list) {
    Call* const call = transfers_ != nullptr ? transfers_->next() : begun_ ? nullptr : call_.get();
    begun_ = true;
    if (call != nullptr)
        list.push_back(call);
}

void RegisterJob::settle(Trouble trouble) {
    const std::uint32_t value = transfers_ != nullptr && !writes_ ? transfers_->value() : value_;
    if (session->log().on())
        session->log().access(session->place(), {address_, value, writes_}, trouble);
    if (trouble)
        return told_(0, failureBy([&] {
                         return session->failure(trouble, writes_ ? "write" : "read", toText(address_),
                                                 limits);
                     }));
    told_(value, std::nullopt);
}

namespace {

Failure batchFailure(const Job& job, Trouble trouble, RegisterAddress first) {
    return Job::failureBy(
        [&] { return job.session->failure(trouble, "batch", "from " + toText(first), job.limits); });
}

} // namespace

void ListJob::next(std::vector<Call*>& list) {
    if (!std::exchange(begun_, true))
        list.push_back(&list_.call());
}

void ListJob::settle(Trouble trouble) {
    if (trouble)
        told_({}, batchFailure(*this, trouble, first_));
    else
        told_(std::move(list_.values), std::nullopt);
}

BatchJob::BatchJob(std::shared_ptr<OpenSession> target, const Within& said, Batch batch, Told told)
    : Job(std::move(target), said),
      batch_(std::move(batch)),
      writes_(std::any_of(batch_.operations().begin(), batch_.operations().end(),
                          [](const Batch::Operation& one) { return one.writes; })),
      run_(session->target(), batch_.operations(), within.repeat),
      told_(std::move(told)) {}

void BatchJob::settle(Trouble trouble) {
    run_.store();
    if (session->log().on())
        session->log().batch(session->place(), batch_.operations(), run_.outcomes, run_.failed, trouble);
    std::optional<Failure> failure;
    if (trouble)
        failure = batchFailure(*this, trouble, batch_.operations()[run_.failed].address);
    told_({std::move(run_.outcomes), std::move(failure)});
}

SmbusBatchJob::SmbusBatchJob(std::shared_ptr<OpenSession> target, const Within& said, Batch batch,
                             BatchJob::Told told)
    : Job(std::move(target), said),
      batch_(std::move(batch)),
      outcomes_(batch_.size()),
      told_(std::move(told)) {}

void SmbusBatchJob::begin(const Batch::Operation& operation) {
    const RackAccess::Target here = session->target();
    transfers_ = operation.writes
                     ? std::make_unique<RackAccess::SmbusTransfers>(here, operation.address, operation.value)
                     : std::make_unique<RackAccess::SmbusTransfers>(here, operation.address);
    sentBefore_ = limits.attempts;
}

void SmbusBatchJob::next(std::vector<Call*>& list) {
    for (; at_ < batch_.size(); ++at_) {
        const Batch::Operation& operation = batch_.operations()[at_];
        if (!transfers_)
            begin(operation);
        if (Call* const call = transfers_->next()) {
            list.push_back(call);
            return;
        }
        outcomes_[at_] = {OperationOutcome::State::Done,
                          operation.writes ? operation.value : transfers_->value(), 0};
        transfers_.reset();
    }
}

void SmbusBatchJob::settle(Trouble trouble) {
    std::optional<Failure> failure;
    if (trouble) {
        outcomes_[at_] = RackAccess::outcomeOf(trouble, limits.attempts != sentBefore_);
        failure = batchFailure(*this, trouble, batch_.operations()[at_].address);
    }
    if (session->log().on())
        session->log().batch(session->place(), batch_.operations(), outcomes_, at_, trouble);
    told_({std::move(outcomes_), std::move(failure)});
}

std::unique_ptr<Job> jobOf(std::shared_ptr<OpenSession> target, const Within& said, Batch batch,
                           BatchJob::Told told) {
    if (target->target().overSmbus())
        return std::make_unique<SmbusBatchJob>(std::move(target), said, std::move(batch), std::move(told));
    return std::make_unique<BatchJob>(std::move(target), said, std::move(batch), std::move(told));
}

} // namespace Orvane::RackCore

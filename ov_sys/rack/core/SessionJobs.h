// What is done to many sessions at once: opening and pinging, closing.
#pragma once

#include "ov_sys/rack/core/Job.h"
#include "ov_sys/rack/link/SetupCalls.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace Orvane::RackCore {

// Tells whoever wants to know how it ended.
using Settled = std::function<void(const Job&, RackLink::Trouble)>;

// A ping, which opens a session that is not open.
class PingJob : public Job {
public:
    PingJob(std::shared_ptr<OpenSession> target, const Within& said, Settled settled)
        : Job(std::move(target), said), ping_(session->state()), settled_(std::move(settled)) {}

    void next(std::vector<RackLink::Call*>& list) override {
        if (ping_.stage == RackLink::Call::Stage::New)
            list.push_back(&ping_);
    }
    void settle(RackLink::Trouble trouble) override { settled_(*this, trouble); }

private:
    RackLink::PingCall ping_;
    Settled settled_;
};

// The closing of a session, if it is open.
class CloseJob : public Job {
public:
    CloseJob(std::shared_ptr<OpenSession> target, const Within& said, Settled settled)
        : Job(std::move(target), said), settled_(std::move(settled)) {}

    void next(std::vector<RackLink::Call*>& list) override {
        if (call_ || !session->state().open)
            return;
        call_ = std::make_unique<RackLink::CloseCall>(session->state());
        list.push_back(call_.get());
    }
    void settle(RackLink::Trouble trouble) override {
        if (call_) { // the board was told; whether it heard, the session is given up
            session->forget();
            session->log().service(session->place(), "session.close", trouble);
        }
        settled_(*this, trouble);
    }

private:
    std::unique_ptr<RackLink::CloseCall> call_;
    Settled settled_;
};

} // namespace Orvane::RackCore

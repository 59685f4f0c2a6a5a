// Something that is to be done on a board and takes one call or several.
#pragma once

#include "ov_sys/rack/core/OpenSession.h"
#include "ov_sys/rack/link/Limits.h"

#include <cstddef>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace Orvane::RackCore {

// What a job is told to have failed by when there is no memory to say it better. The first call makes it and
// may throw std::bad_alloc.
const Failure& memoryRanOut();

// Made and settled on the thread that drives the Fleet.
class Job {
public:
    Job(std::shared_ptr<OpenSession> target, const Within& said) : session(std::move(target)), within(said) {}
    virtual ~Job() = default;
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;

    // Adds the calls that are to be made next, all together, kMostCalls at most; none when everything has
    // been done. They stay the job's until the next time, and all calls before them have succeeded.
    static constexpr std::size_t kMostCalls = 16;
    virtual void next(std::vector<RackLink::Call*>& calls) = 0;
    // The end: success, or why there was none. Must not throw.
    virtual void settle(RackLink::Trouble trouble) = 0;
    // Whether no other job may have calls under way on the board: what takes several steps would be torn
    // apart.
    virtual bool alone() const noexcept { return false; }

    // The Failure that `make` gives.
    template <class Make>
    static Failure failureBy(Make make) noexcept {
        try {
            return make();
        } catch (const std::bad_alloc&) {
            return memoryRanOut();
        }
    }

    const std::shared_ptr<OpenSession> session;
    const Within within;
    RackLink::Limits limits{within};
    std::vector<RackLink::Call*> calls; // under way
    bool torn = false;                  // memory ran out between its calls: it is to be given up
};

} // namespace Orvane::RackCore

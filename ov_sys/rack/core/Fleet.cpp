#include "ov_sys/rack/core/Fleet.h"

#include <algorithm>
#include <poll.h>

namespace Orvane::RackCore {

using namespace RackLink;

Fleet::~Fleet() {
    for (Member& member : members_)
        end(member, FailureKind::Cancelled);
}

void Fleet::add(const std::shared_ptr<Board>& board, Call& call) {
    call.limit(limits_.within, limits_.now, limits_.end);
    // Calls of a board come in a row, as its sessions do.
    if (members_.empty() || members_.back().board != board)
        members_.push_back({board, {}, false, false});
    members_.back().calls.push_back(&call);
}

bool Fleet::allDone(const Member& member) noexcept {
    return std::all_of(member.calls.begin(), member.calls.end(),
                       [](const Call* call) { return call->done(); });
}

void Fleet::begin(Member& member) {
    if (!member.board->link.turn.tryTake())
        return;
    member.hasTurn = true;
    for (Call* const call : member.calls)
        member.board->link.start(*call, limits_.now);
}

void Fleet::end(Member& member, Trouble why) {
    if (member.done)
        return;
    member.done = true;
    for (Call* const call : member.calls) {
        if (member.hasTurn && !call->done()) {
            member.board->link.drop(*call, why, limits_.now);
        } else if (!call->done()) {
            call->trouble = why;
            call->stage = Call::Stage::Done;
        }
    }
    if (member.hasTurn)
        member.board->link.turn.leave();
}

// Whether something is still to be done.
bool Fleet::step(bool yields) {
    bool busy = false;
    for (Member& member : members_) {
        if (member.done)
            continue;
        if (!member.hasTurn)
            begin(member);
        else
            member.board->link.step(limits_.now);
        if (member.hasTurn && allDone(member))
            end(member, {});
        else if (member.hasTurn && yields && member.board->link.turn.wanted())
            end(member, FailureKind::Cancelled);
        busy = busy || !member.done;
    }
    return busy;
}

void Fleet::wait() {
    constexpr std::chrono::milliseconds kLook{20}; // for turns that others hold
    TimePoint wake = std::min(limits_.end, limits_.now + kLook);
    watched_.clear();
    for (const Member& member : members_) {
        if (member.done || !member.hasTurn)
            continue;
        pollfd entries[BoardLink::kMostWatched];
        const std::size_t count = member.board->link.watch(entries);
        watched_.insert(watched_.end(), entries, entries + count);
        wake = std::min(wake, member.board->link.wake(limits_.now));
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(wake - limits_.now).count();
    poll(watched_.data(), watched_.size(), static_cast<int>(std::max<decltype(left)>(left, 0)));
    limits_.now = Clock::now();
}

void Fleet::run(bool yields, const std::function<bool()>& stop) {
    while (step(yields)) {
        const Cancellation* const cancellation = limits_.within.cancellation;
        const bool cancelled = (cancellation != nullptr && cancellation->cancelled()) || (stop && stop());
        if (cancelled || limits_.now >= limits_.end) {
            for (Member& member : members_)
                end(member, cancelled ? FailureKind::Cancelled : FailureKind::Busy);
            return;
        }
        wait();
    }
}

} // namespace Orvane::RackCore

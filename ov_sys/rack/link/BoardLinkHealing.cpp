// What is done about answers that do not come: repeating, looking up again, opening again.
#include "ov_sys/rack/link/BoardLink.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

namespace Orvane::RackLink {
namespace {

using Stage = Call::Stage;

// Over a connection a missing answer is not a lost packet.
constexpr std::chrono::milliseconds kStreamPatience{1000};

} // namespace

bool BoardLink::opens(const Session& session) const noexcept {
    auto* const open = dynamic_cast<const OpenCall*>(errand_.get());
    return open != nullptr && open->target == &session;
}

void BoardLink::abandon(const Session& session) {
    if (opens(session))
        keepForLate(std::move(errand_));
    for (const std::unique_ptr<Call>& late : lateOpenings_)
        if (auto* const open = dynamic_cast<OpenCall*>(late.get()); open->target == &session)
            open->target = nullptr;
}

TimePoint BoardLink::patienceEnd(const Call& call) const noexcept {
    if (overStream(call.program))
        return call.effect == Effect::Alone ? TimePoint::max() : call.sentAt + kStreamPatience;
    return call.sentAt + roundTrip_.patience(call.losses);
}

void BoardLink::checkPatience(TimePoint now) {
    if (errand_) {
        if (now >= patienceEnd(*errand_))
            loseErrand(now);
    } else if (Call* const call = flying_.front(); call != nullptr && now >= patienceEnd(*call)) {
        lost(*call, now);
    }
}

void BoardLink::lost(Call& call, TimePoint now) {
    ++call.losses;
    if (overStream(call.program)) {
        streamOf(call.program).stream.close();
        if (call.repeatsLeft == 0) { // the connection that would bring the answer is gone
            finish(call, FailureKind::TimedOut, now);
            return deliver(now);
        }
        call.losses = std::max(call.losses, kDoubtAfter);
    }
    if (call.losses >= kDoubtAfter)
        call.heals ? doubtPorts() : doubt();
    if (!mayResend(call)) {
        call.sentAt = now; // looks again after another while
        return;
    }
    if (call.losses == 1)
        around_.report(*this, call.session, Event::Kind::Retried, Event::Level::Debug, {});
    if (doubts_ != 0 || doubtful_)
        sendAgainLater(call);
    else
        resendFrom(call, now);
}

// They fly again when board and port are certain.
void BoardLink::sendAgainLater(Call& first) {
    for (Call* one = &first; one != nullptr; one = one->next)
        one->repeatsLeft -= one->repeatsLeft == Repeat::kUpToTheDeadline ? 0U : 1U;
    goBack(first);
}

// Everything behind a repeated write goes again, answered or not; behind a read only what was not answered.
bool BoardLink::mayResend(const Call& first) const noexcept {
    for (const Call* call = &first; call != nullptr; call = call->next)
        if (call->repeatsLeft == 0 && (call->stage == Stage::Flying || first.effect != Effect::Reads))
            return false;
    return true;
}

void BoardLink::resendFrom(Call& first, TimePoint now) {
    const bool all = first.effect != Effect::Reads;
    for (Call *call = &first, *next = nullptr; call != nullptr; call = next) {
        next = call->next;
        if (call->stage != Stage::Flying && !all)
            continue;
        call->stage = Stage::Flying;
        if (call->repeatsLeft != Repeat::kUpToTheDeadline)
            --call->repeatsLeft;
        transmit(*call, now);
    }
}

void BoardLink::checkDeadlines(TimePoint now) {
    nextDeadline_ = TimePoint::max();
    for (CallList* list : {&flying_, &waiting_})
        for (Call *call = list->front(), *next = nullptr; call != nullptr; call = next) {
            next = call->next;
            if (now < call->deadline)
                nextDeadline_ = std::min(nextDeadline_, call->deadline);
            else if (call->stage != Stage::Answered)
                finish(*call, overdue(*call), now);
        }
    deliver(now);
}

Trouble BoardLink::overdue(const Call& call) const noexcept {
    if (call.trouble && (call.trouble.kind() != FailureKind::Unreachable || !call.everSent))
        return call.trouble; // why it was put off
    const bool silent = missing_ || doubtful_ || (errand_ && errand_->losses > 0);
    return silent && !call.everSent ? FailureKind::Unreachable : FailureKind::TimedOut;
}

bool BoardLink::needsPort(Program program) const noexcept {
    return ports_[indexOf(program)] == 0 || (doubts_ >> indexOf(program) & 1U) != 0;
}

// Whether all is there that the call needs; begins to get it otherwise.
bool BoardLink::prepared(Call& call, TimePoint now) {
    if (errand_ || probe_)
        return false;
    Session* const session = call.session;
    if (!datagrams_.open()) {
        finish(call, {FailureKind::Unreachable, -errno}, now);
        return false;
    }
    if (doubtful_)
        beginProbe(now);
    if (doubtful_)
        return false;
    if (needsPort(call.program)) {
        beginErrand(std::make_unique<LookUpCall>(call.program), now);
        return false;
    }
    if (session == nullptr)
        return true;
    if (session->open)
        return call.isHook || call.isPing || !session->hookDue;
    if (session->everOpened && !call.heals) {
        finish(call, {FailureKind::LostSession, -EBADRQC}, now);
        return false;
    }
    if (needsPort(Program::Setup))
        beginErrand(std::make_unique<LookUpCall>(Program::Setup), now);
    else
        beginErrand(std::make_unique<OpenCall>(*session), now);
    return false;
}

void BoardLink::beginErrand(std::unique_ptr<Call> errand, TimePoint now) {
    errand_ = std::move(errand);
    errand_->begun = now;
    errand_->id = nextId_++;
    errand_->stage = Stage::Flying;
    transmit(*errand_, now);
}

void BoardLink::loseErrand(TimePoint now) {
    constexpr std::chrono::milliseconds kBetweenConnections{100};
    ++errand_->losses;
    if (auto* const error = dynamic_cast<ErrorCall*>(errand_.get())) {
        const std::unique_ptr<Call> unanswered = std::move(errand_);
        return refused(*error, now);
    }
    if (overStream(errand_->program)) {
        if (opensAgain(now))
            return;
        // A refused or broken connection: perhaps the board is elsewhere by now.
        nameLeftBehind(errand_.get());
        streamOf(errand_->program).stream.close();
        doubtPorts();
        const std::unique_ptr<Call> former = std::move(errand_);
        if (Call* const call = waiting_.front())
            call->notBefore = now + kBetweenConnections;
        return;
    }
    if (errand_->losses >= kDoubtAfter) {
        missing_ = true;
        around_.missing(*this);
    }
    transmit(*errand_, now);
}

// Over a connection that lives an answer is late, and perhaps forgotten by the board.
bool BoardLink::opensAgain(TimePoint now) {
    auto* const open = dynamic_cast<OpenCall*>(errand_.get());
    if (open == nullptr || !setup_.stream.isConnected() || open->losses >= kDoubtAfter)
        return false;
    auto again = std::make_unique<OpenCall>(*open->target);
    again->losses = open->losses;
    keepForLate(std::move(errand_));
    beginErrand(std::move(again), now);
    return true;
}

void BoardLink::doubtPorts() noexcept {
    doubt();
    for (std::size_t i = 0; i < kPrograms; ++i)
        if (ports_[i] != 0 && i != indexOf(Program::PortMapper))
            doubts_ |= 1U << i;
}

void BoardLink::portFound(const LookUpCall& lookUp, TimePoint now) {
    const std::size_t index = indexOf(lookUp.wanted);
    const std::uint16_t port = lookUp.port();
    if (port == 0) { // perhaps it is still starting
        constexpr std::chrono::milliseconds kBetweenLookUps{100};
        if (Call* const call = waiting_.front()) {
            call->trouble = FailureKind::Unreachable;
            call->notBefore = now + kBetweenLookUps;
        }
        return;
    }
    if (ports_[index] != 0 && ports_[index] != port)
        for (StreamOf* one : {&setup_, &adc_}) // to a server that is no more
            one->stream.close();
    ports_[index] = port;
    doubts_ &= ~(1U << index);
    if (Call* const call = waiting_.front())
        call->trouble = {};
}

// The board itself has answered from there, by its name.
void BoardLink::moveTo(in_addr_t address) {
    trust();
    if (address == this->address())
        return;
    address_.store(address, std::memory_order_relaxed);
    tally_.moves.add();
    around_.report(*this, nullptr, Event::Kind::Moved, Event::Level::Warning, dotted(address));
    doubtPorts();
    doubtful_ = false;
    nameLeftBehind(errand_.get());
    setup_.stream.close();
    adc_.stream.close();
    if (!flying_.empty())
        goBack(*flying_.front());
    errand_.reset();
}

void BoardLink::closed(Session& session) {
    if (session.open)
        around_.report(*this, &session, Event::Kind::Closed, Event::Level::Info, {});
    session.open = false;
    session.everOpened = false;
    session.key = 0;
}

void BoardLink::sessionOpened(const OpenCall& open) {
    Session& session = *open.target;
    open.grant(session);
    session.open = true;
    ++session.openings;
    if (Call* const call = waiting_.front())
        call->trouble = {};
    if (!session.everOpened) {
        session.everOpened = true;
        tally_.opens.add();
        around_.report(*this, &session, Event::Kind::Opened, Event::Level::Info, {});
        return;
    }
    tally_.reopens.add();
    session.hookDue = static_cast<bool>(session.onReopen);
    around_.report(*this, &session, Event::Kind::Reopened, Event::Level::Info, {});
}

} // namespace Orvane::RackLink

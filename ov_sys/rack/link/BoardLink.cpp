// How calls are started, sent, repeated and ended, up to the window of calls in flight.
#include "ov_sys/rack/link/BoardLink.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

namespace Orvane::RackLink {
namespace {

// Ids of two runs must not meet: an answer to the former program would fit the latter's call.
std::uint32_t firstId() {
    std::random_device source;
    return static_cast<std::uint32_t>(source());
}

} // namespace

BoardLink::BoardLink(std::string board, in_addr_t address, Surroundings& around)
    : board_(std::move(board)), around_(around), log_(around.log()), address_(address), nextId_(firstId()) {
    ports_[indexOf(Program::PortMapper)] = PMAPPORT;
}

void BoardLink::start(Call& call, TimePoint now) {
    constexpr std::chrono::milliseconds kQuiet{20};
    if (flying_.empty() && now - lastHeard_ > kQuiet)
        stepStreams(now); // a connection that has ended meanwhile raises doubts before anything is sent
    call.stage = Call::Stage::Waiting;
    nextDeadline_ = std::min(nextDeadline_, call.deadline);
    if (call.isHook)
        waiting_.pushFront(call);
    else
        waiting_.pushBack(call);
    advance(now);
}

void BoardLink::step(TimePoint now, bool streams) {
    if (found_.load(std::memory_order_relaxed) != 0)
        moveTo(found_.exchange(0, std::memory_order_acquire));
    // First: what arrives behind the end of a connection may be another board's.
    if (streams)
        stepStreams(now);
    if (probe_)
        stepProbe(now);
    receive(now);
    if (idle() && !errand_)
        return;
    checkPatience(now);
    if (now >= nextDeadline_)
        checkDeadlines(now);
    advance(now);
}

void BoardLink::advance(TimePoint now) {
    while (Call* const call = waiting_.front()) {
        if (now < call->notBefore || !mayFly(*call))
            return;
        if (isPrepared(*call) || prepared(*call, now)) {
            waiting_.remove(*call);
            launch(*call, now);
        } else if (!call->done()) {
            return;
        }
    }
}

// As nearly every call is, of a session that is open.
bool BoardLink::isPrepared(const Call& call) const noexcept {
    const Session* const session = call.session;
    return session != nullptr && session->open && !session->hookDue && !errand_ && !probe_ && !doubtful_ &&
           doubts_ == 0 && ports_[indexOf(call.program)] != 0 && datagrams_.descriptor() >= 0;
}

bool BoardLink::mayFly(const Call& call) const noexcept {
    const Call* const last = flying_.back();
    if (last == nullptr)
        return true;
    const auto alone = [](const Call& one) { return one.effect == Effect::Alone || overStream(one.program); };
    if (alone(call) || alone(*last))
        return false;
    // Nothing could put a read right whose answer got lost when a write has passed it.
    if (call.effect == Effect::Writes && last->effect == Effect::Reads)
        return false;
    return inFlight_ < window_ && bytesInFlight_ + call.room <= kWindowBytes;
}

void BoardLink::launch(Call& call, TimePoint now) {
    call.id = nextId_++;
    if (call.session != nullptr)
        call.identity = call.isPing ? call.session->nextPing() : call.session->nextIdentity();
    call.stage = Call::Stage::Flying;
    flying_.pushBack(call);
    ++inFlight_;
    bytesInFlight_ += call.room;
    transmit(call, now);
}

void BoardLink::transmit(Call& call, TimePoint now) {
    call.sentAt = now;
    ++call.sends;
    if (overStream(call.program)) {
        transmitOverStream(call);
    } else {
        alignas(std::uint32_t) char request[kLargestDatagram];
        call.size = static_cast<std::uint32_t>(call.encode(request, sizeof request));
        const sockaddr_in to =
            endpoint(address_.load(std::memory_order_relaxed), ports_[indexOf(call.program)]);
        // A datagram that the system does not take is one that got lost.
        if (trains_ != nullptr)
            transmitByTrain(request, call.size, to);
        else if (call.size != 0)
            datagrams_.send(request, call.size, to);
    }
    if (call.size == 0)
        return drop(call, FailureKind::InvalidArgument, now);
    call.everSent = true;
    tally_.sent(call);
}

void BoardLink::transmitByTrain(const char* request, std::size_t size, const sockaddr_in& to) {
    if (size != 0)
        trains_->departures.add(datagrams_.descriptor(), to, request, size);
    if (inFlight_ > 1)
        datagrams_.expectTrains();
}

void BoardLink::transmitOverStream(Call& call) {
    constexpr std::size_t kLargestRequest = std::size_t{1} << 20U;
    const std::unique_ptr<char[]> request(new char[kLargestRequest]); // few of its pages are ever touched
    call.size = static_cast<std::uint32_t>(call.encode(request.get(), kLargestRequest));
    Stream& stream = streamOf(call.program).stream;
    if (!stream.isOpen() && call.program == Program::Setup)
        forgetLate(); // they were asked for over another connection
    if (!stream.isOpen()) {
        ++socketsMade_;
        stream.open(endpoint(address(), ports_[indexOf(call.program)]));
    }
    if (stream.isOpen() && call.size != 0)
        stream.send(request.get(), call.size);
}

void BoardLink::finish(Call& call, Trouble trouble, TimePoint now) {
    using Stage = Call::Stage;
    if (call.stage == Stage::Flying || call.stage == Stage::Answered) {
        flying_.remove(call);
        --inFlight_;
        bytesInFlight_ -= call.room;
    } else if (call.stage == Stage::Waiting) {
        waiting_.remove(call);
    }
    call.trouble = trouble;
    call.stage = Stage::Done;
    tally_.ended(call, now);
}

void BoardLink::drop(Call& call, Trouble why, TimePoint now) {
    if (&call == errand_.get())
        return;
    if (!call.done())
        finish(call, why, now);
    deliver(now);
}

void BoardLink::withdraw(Call& call) noexcept {
    waiting_.remove(call);
    call.stage = Call::Stage::New;
}

TimePoint BoardLink::wake(TimePoint now) const noexcept {
    constexpr std::chrono::milliseconds kLook{20}; // between two looks at where the board was found
    TimePoint next = nextDeadline_;
    if (missing_)
        next = std::min(next, now + kLook);
    if (probe_)
        next = std::min(next, probeEnd_);
    else if (errand_)
        next = std::min(next, patienceEnd(*errand_));
    else if (!flying_.empty())
        next = std::min(next, patienceEnd(*flying_.front()));
    if (const Call* const call = waiting_.front(); call != nullptr && call->notBefore > now)
        next = std::min(next, call->notBefore);
    return next;
}

Session* BoardLink::awaitingHook() const noexcept {
    const Call* const call = waiting_.front();
    const bool held = call != nullptr && !call->isHook && call->session != nullptr && call->session->open &&
                      call->session->hookDue;
    return held ? call->session : nullptr;
}

} // namespace Orvane::RackLink

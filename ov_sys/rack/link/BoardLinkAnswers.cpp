// What a board's answers do to the calls on their way.
#include "ov_sys/rack/link/BoardLink.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>

namespace Orvane::RackLink {
namespace {

using Stage = Call::Stage;

constexpr int kMostDatagrams = 4096; // a flood must not keep the caller here

// Transaction id of a message.
bool readId(const char* bytes, std::size_t length, std::uint32_t& id) noexcept {
    if (length < sizeof id)
        return false;
    std::memcpy(&id, bytes, sizeof id);
    id = ntohl(id);
    return true;
}

} // namespace

inline void BoardLink::takeDatagram(char* bytes, std::size_t length, const sockaddr_in& from, TimePoint now) {
    std::uint32_t id = 0;
    Call* const call = readId(bytes, length, id) ? awaiting(id) : nullptr;
    if (call == nullptr || overStream(call->program) || !isFrom(*call, from)) {
        tally_.strays.add();
        return;
    }
    answer(*call, bytes, length, now);
}

void BoardLink::receive(TimePoint now) {
    if (datagrams_.descriptor() < 0)
        return;
    if (datagrams_.expectsTrains()) {
        if (trains_ != nullptr)
            return receiveTrains(trains_->arrivals, now);
        ArrivedTrain arrivals;
        return receiveTrains(arrivals, now);
    }
    for (int i = 0; i < kMostDatagrams; ++i) {
        alignas(std::uint32_t) char reply[kLargestDatagram];
        sockaddr_in from;
        const ssize_t length = datagrams_.receive(reply, sizeof reply, from);
        if (length < 0)
            return;
        takeDatagram(reply, static_cast<std::size_t>(length), from, now);
        if (flying_.empty() && !errand_)
            return; // spares the look that finds nothing; what is late waits for the next call
    }
}

void BoardLink::receiveTrains(ArrivedTrain& arrivals, TimePoint now) {
    for (int i = 0; i < kMostDatagrams && arrivals.take(datagrams_.descriptor()); ++i) {
        char* datagram = nullptr;
        std::size_t length = 0;
        while (arrivals.next(datagram, length))
            takeDatagram(datagram, length, arrivals.from(), now);
        if (flying_.empty() && !errand_)
            return;
    }
}

Call* BoardLink::awaiting(std::uint32_t id) noexcept {
    if (errand_ && errand_->id == id)
        return errand_.get();
    for (Call* call = flying_.front(); call != nullptr; call = call->next)
        if (call->id == id)
            return call->stage == Stage::Flying ? call : nullptr;
    return nullptr;
}

bool BoardLink::isFrom(const Call& call, const sockaddr_in& sender) const noexcept {
    return sender.sin_addr.s_addr == address() && ntohs(sender.sin_port) == ports_[indexOf(call.program)];
}

void BoardLink::stepStreams(TimePoint now) {
    for (StreamOf* one : {&setup_, &adc_}) {
        if (!one->stream.isOpen())
            continue;
        const bool lives = one->stream.step();
        std::string message;
        while (one->stream.take(message)) {
            std::uint32_t id = 0;
            Call* const call = readId(message.data(), message.size(), id) ? awaiting(id) : nullptr;
            if (call != nullptr && call->program == one->program)
                answer(*call, message.data(), message.size(), now);
            else if (call == nullptr)
                answeredLate(id, message.data(), message.size(), now);
        }
        if (!lives)
            streamEnded(*one, now);
    }
}

void BoardLink::streamEnded(StreamOf& which, TimePoint now) {
    which.stream.close();
    doubt();
    Call* const call = flying_.front();
    if (errand_ && errand_->program == which.program)
        return loseErrand(now);
    if (call == nullptr)
        return;
    if (call->program == which.program)
        lost(*call, now);
    else if (mayResend(*call))
        sendAgainLater(*call);
}

void BoardLink::answer(Call& call, char* bytes, std::size_t length, TimePoint now) {
    tally_.received(call.program, length);
    if (call.sends == 1 && !overStream(call.program))
        roundTrip_.measured(now - call.sentAt);
    const Trouble trouble = call.decode(bytes, length);
    if (&call == errand_.get())
        return answerErrand(trouble, now);
    call.losses = 0;
    lastHeard_ = now;
    if (trouble && trouble.kind() == FailureKind::BoardError) {
        if (trouble.code() == -EBADRQC && call.session != nullptr)
            return sessionForgotten(call, now);
        if (trouble.code() == -EBUSY || (trouble.code() == -ETIMEDOUT && call.repeatsLeft > 0))
            return postpone(call, trouble, now);
    }
    call.trouble = trouble;
    call.stage = Stage::Answered;
    deliver(now);
}

// Calls end in order: an answer behind a gap may have to be asked for again.
void BoardLink::deliver(TimePoint now) {
    while (Call* const call = flying_.front()) {
        if (call->stage != Stage::Answered)
            return;
        finish(*call, call->trouble, now);
    }
}

// What follows a call that was not executed has to wait with it.
void BoardLink::goBack(Call& from) {
    for (Call *call = flying_.back(), *before = nullptr; call != nullptr; call = before) {
        before = call == &from ? nullptr : call->previous;
        flying_.remove(*call);
        --inFlight_;
        bytesInFlight_ -= call->room;
        call->stage = Stage::Waiting;
        waiting_.pushFront(*call);
    }
}

void BoardLink::postpone(Call& call, Trouble why, TimePoint now) {
    constexpr std::chrono::milliseconds kFirst{5};
    constexpr std::chrono::milliseconds kLongest{200};
    if (why.code() == -ETIMEDOUT)
        --call.repeatsLeft;
    call.everSent = false; // the board says that it did nothing
    call.trouble = {FailureKind::Busy, why.code()};
    const auto wait = std::min<Clock::duration>(kFirst * (1U << std::min(call.sends, 6U)), kLongest);
    call.notBefore = now + wait;
    goBack(call);
}

void BoardLink::sessionForgotten(Call& call, TimePoint now) {
    constexpr unsigned kMostTries = 100; // a board that forgets at once would be asked for ever
    Session& session = *call.session;
    if (session.open) {
        session.open = false;
        around_.report(*this, &session, Event::Kind::Lost, Event::Level::Warning,
                       "the board forgot the session");
    }
    doubt(); // or it is another board
    call.everSent = false;
    if (!call.heals || call.sends >= kMostTries) {
        finish(call, {FailureKind::LostSession, -EBADRQC}, now);
        return deliver(now);
    }
    goBack(call);
}

void BoardLink::answerErrand(Trouble trouble, TimePoint now) {
    missing_ = false;
    lastHeard_ = now;
    const std::unique_ptr<Call> errand = std::move(errand_);
    tally_.ended(*errand, now);
    if (auto* const open = dynamic_cast<OpenCall*>(errand.get()))
        return answerOpening(*open, trouble, now);
    if (auto* const error = dynamic_cast<ErrorCall*>(errand.get()))
        return refused(*error, now);
    auto* const lookUp = dynamic_cast<LookUpCall*>(errand.get());
    if (lookUp != nullptr && !trouble)
        return portFound(*lookUp, now);
    if (Call* const call = waiting_.front())
        finish(*call, trouble, now);
}

void BoardLink::answerOpening(OpenCall& open, Trouble trouble, TimePoint now) {
    if (!trouble)
        return sessionOpened(open);
    if (trouble.kind() == FailureKind::BoardError)
        trouble = {trouble.code() == -EBUSY ? FailureKind::Busy : FailureKind::Refused, trouble.code()};
    Call* const call = waiting_.front();
    if (call == nullptr || call->session != open.target)
        return; // who wanted the session has given up
    const bool refuses = trouble.kind() == FailureKind::Refused;
    if (trouble.kind() == FailureKind::Busy || (refuses && open.target->access.queues)) {
        constexpr std::chrono::milliseconds kBetweenOpens{100};
        call->trouble = trouble;
        call->notBefore = now + kBetweenOpens;
    } else if (refuses) {
        call->trouble = trouble;
        beginErrand(std::make_unique<ErrorCall>(*call, trouble), now);
    } else {
        finish(*call, trouble, now);
    }
}

// What the board adds to its refusal is kept for the failure's text.
void BoardLink::refused(const ErrorCall& error, TimePoint now) {
    Call* const call = waiting_.front();
    if (call != &error.refused)
        return;
    call->session->refusal.store(error.said(), std::memory_order_relaxed);
    finish(*call, error.why, now);
}

} // namespace Orvane::RackLink

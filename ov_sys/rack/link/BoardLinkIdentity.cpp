// Whether the board at an address is the one that is meant, and sessions that nobody meant to open.
#include "ov_sys/rack/link/BoardLink.h"

#include "ov_sys/Interface/discovery/DiscoveryProtocol.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

namespace Orvane::RackLink {
namespace {

constexpr std::chrono::milliseconds kProbePatience{500};
constexpr std::chrono::milliseconds kBetweenProbes{100};

} // namespace

// Nothing more is sent before the board has said its name. What is asked of the board on the side is asked
// anew then.
void BoardLink::doubt() noexcept {
    doubtful_ = true;
    if (errand_ && !overStream(errand_->program))
        errand_.reset();
}

void BoardLink::trust() noexcept {
    doubtful_ = false;
    impostor_ = false;
    missing_ = false;
    probe_.reset();
}

void BoardLink::beginProbe(TimePoint now) {
    ++socketsMade_;
    probe_ = std::make_unique<Probe>(endpoint(address(), DiscoveryProtocol::kPort));
    probeEnd_ = now + kProbePatience;
    stepProbe(now);
}

void BoardLink::stepProbe(TimePoint now) {
    const Probe::State state = probe_->step();
    if (state == Probe::State::Waiting && now < probeEnd_)
        return;
    if (state == Probe::State::Answered && around_.names(address(), probe_->answer(), board_))
        return trust();
    if (state == Probe::State::Answered && !std::exchange(impostor_, true))
        around_.report(*this, nullptr, Event::Kind::Lost, Event::Level::Warning,
                       "another board answers at " + dotted(address()));
    probe_.reset();
    missing_ = true;
    around_.missing(*this);
    if (Call* const call = waiting_.front()) {
        call->trouble = FailureKind::Unreachable;
        call->notBefore = now + kBetweenProbes;
    }
}

// The board may have granted what it did not say in time; once it does, it is told that nobody wants it.
void BoardLink::keepForLate(std::unique_ptr<Call> opening) {
    constexpr std::size_t kMost = 8;
    if (lateOpenings_.size() < kMost)
        lateOpenings_.push_back(std::move(opening));
}

// A board that was asked to open a session over a connection that is no more may have done so, and nobody
// knows its number.
void BoardLink::nameLeftBehind(const Call* opening) {
    auto* const open = dynamic_cast<const OpenCall*>(opening);
    if (open == nullptr || !setup_.stream.hasSent())
        return;
    char key[8];
    std::snprintf(key, sizeof key, "0x%04X", open->argument.sessionId & 0xFFFFU);
    around_.report(*this, open->target, Event::Kind::Lost, Event::Level::Warning,
                   "the answer to an opening was lost: the board may keep a session of key " +
                       std::string(key) + " until it misses its pings");
}

void BoardLink::forgetLate() {
    for (const std::unique_ptr<Call>& late : lateOpenings_)
        nameLeftBehind(late.get());
    lateOpenings_.clear();
}

bool BoardLink::answeredLate(std::uint32_t id, char* bytes, std::size_t length, TimePoint now) {
    const auto late = std::find_if(lateOpenings_.begin(), lateOpenings_.end(),
                                   [id](const std::unique_ptr<Call>& one) { return one->id == id; });
    if (late == lateOpenings_.end())
        return false;
    const std::unique_ptr<Call> call = std::move(*late);
    lateOpenings_.erase(late);
    auto* const open = dynamic_cast<OpenCall*>(call.get());
    if (open == nullptr || call->decode(bytes, length))
        return true;
    if (open->target != nullptr && opens(*open->target)) { // the second opening is the one too many now
        keepForLate(std::move(errand_));
        sessionOpened(*open);
        return true;
    }
    Session unwanted;
    open->grant(unwanted);
    CloseCall close(unwanted);
    close.id = nextId_++;
    close.identity = unwanted.nextIdentity();
    close.begun = now;
    transmitOverStream(close); // its answer is nobody's
    return true;
}

} // namespace Orvane::RackLink

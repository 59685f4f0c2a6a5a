// When a session opens, is forgotten, and closes.
#include "ov_sys/rack/core/OpenSession.h"

#include "ov_sys/rack/core/Board.h"
#include "ov_sys/rack/core/LogEntry.h"
#include "ov_sys/rack/link/SetupCalls.h"

#include <cerrno>
#include <utility>

namespace Orvane::RackCore {
namespace {

using namespace RackLink;

// What a board's refusal to open a session says of the reason.
std::string refusal(int code) {
    switch (code) {
    case -EACCES:
        return "Another session holds the PHY exclusively, or this one wants what others share: use the "
               "holder's "
               "key or wait for its end.";
    case -ENOSPC:
        return "The board has no room for another session: close some.";
    case -EPERM:
        return "The board permits no such session.";
    default:
        return {};
    }
}

// The record that a board has for its refusal; what its numbers mean is its own.
std::string addition(std::uint64_t said) {
    if (said == 0)
        return {};
    return " The board adds " + std::to_string(said >> 32U) + ", " +
           std::to_string(static_cast<std::int32_t>(said & 0xFFFFFFFFU)) + ".";
}

} // namespace

OpenSession::OpenSession(std::shared_ptr<Board> board, unsigned port, unsigned phy, Access access)
    : board_(std::move(board)) {
    state_.port = port;
    state_.phy = phy;
    state_.access = access;
}

OpenSession::~OpenSession() {
    constexpr std::chrono::seconds kFarewell{1};
    try {
        setHook({}); // one that is due could use the handle that is just ending
        const Within within{kFarewell, Repeat{}, false, nullptr};
        Limits limits(within);
        close(limits);
    } catch (...) { // NOLINT(bugprone-empty-catch): a board that cannot be told keeps its session
    }
    const Turn::Taken taken = link().turn.take(TimePoint::max(), nullptr);
    static_cast<void>(taken);
    const TurnGuard turn(link().turn);
    link().abandon(state_);
}

BoardLink& OpenSession::link() noexcept {
    return board_->link;
}

RackAccess::Target OpenSession::target() noexcept {
    return {board_->link, state_, smbus_.load(std::memory_order_relaxed)};
}

Failure OpenSession::failure(Trouble trouble, const char* operation, const std::string& location,
                             const Limits& limits, std::string advice) const {
    FailureDetails details;
    details.kind = trouble.kind();
    details.board = board_->link.board();
    details.port = static_cast<int>(state_.port);
    details.phy = static_cast<int>(state_.phy);
    details.operation = operation;
    details.location = location;
    details.code = trouble.code();
    details.attempts = limits.attempts;
    details.spent = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - limits.begun);
    details.advice = trouble.kind() == FailureKind::Refused
                         ? refusal(trouble.code()) + addition(state_.refusal.load(std::memory_order_relaxed))
                         : std::move(advice);
    return Failure(std::move(details));
}

void OpenSession::check(Trouble trouble, const char* operation, const std::string& location,
                        const Limits& limits) const {
    if (trouble)
        throw failure(trouble, operation, location, limits);
}

void OpenSession::objectAtLength(const char* operation, const RegisterAddress& address, std::uint32_t value,
                                 const Limits& limits) const {
    const RackAccess::Target self{board_->link, const_cast<Session&>(state_),
                                  SmbusProtocol::Paged16}; // NOLINT
    if (std::string why = RackAccess::objection(self, address, value); !why.empty())
        throw failure(FailureKind::InvalidArgument, operation, toText(address), limits, std::move(why));
}

void OpenSession::open(Limits& limits) {
    LogEntry entry(*this, "session.open");
    PingCall ping(state_); // opens what is not open
    entry.check(drive(link(), ping, limits), "open", {}, limits);
    entry.done();
}

void OpenSession::close(Limits& limits) {
    check(takeTurn(link(), limits), "close", {}, limits);
    const TurnGuard turn(link().turn);
    if (!state_.open && link().opens(state_)) { // what the board grants has to be closed
        PingCall ping(state_);
        drive(link(), ping, limits);
    }
    if (!state_.open)
        return;
    LogEntry entry(*this, "session.close");
    CloseCall call(state_);
    const Trouble trouble = drive(link(), call, limits);
    forget();
    entry.check(trouble, "close", {}, limits);
    entry.done();
}

void OpenSession::forget() {
    link().closed(state_);
}

void OpenSession::setHook(std::function<void()> hook) {
    static_cast<void>(link().turn.take(TimePoint::max(), nullptr));
    const TurnGuard turn(link().turn);
    state_.onReopen = std::move(hook);
}

bool OpenSession::isOpen() {
    static_cast<void>(link().turn.take(TimePoint::max(), nullptr));
    const TurnGuard turn(link().turn);
    return state_.open;
}

std::uint16_t OpenSession::key() {
    static_cast<void>(link().turn.take(TimePoint::max(), nullptr));
    const TurnGuard turn(link().turn);
    return state_.key;
}

} // namespace Orvane::RackCore

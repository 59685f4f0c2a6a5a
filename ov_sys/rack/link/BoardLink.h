// Everything that is said to one board: its calls in flight, and what it takes to reach it again.
#pragma once

#include "ov_sys/Interface/foundation/DatagramTrain.h"
#include "ov_sys/rack/link/DatagramSocket.h"
#include "ov_sys/rack/link/Endpoint.h"
#include "ov_sys/rack/link/Probe.h"
#include "ov_sys/rack/link/RoundTrip.h"
#include "ov_sys/rack/link/SetupCalls.h"
#include "ov_sys/rack/link/Stream.h"
#include "ov_sys/rack/link/Tally.h"
#include "ov_sys/rack/link/Turn.h"
#include "ov_sys/rack/log/TransactionLog.h"
#include "ov_sys/rack/values/Event.h"

#include <array>
#include <atomic>
#include <memory>
#include <poll.h>
#include <string>
#include <vector>

namespace Orvane::RackLink {

class BoardLink;

// What a link asks of its rack. Any thread; never blocks.
class Surroundings {
public:
    virtual ~Surroundings() = default;
    // `session` null: the board as a whole.
    virtual void report(const BoardLink& link, const Session* session, Event::Kind kind, Event::Level level,
                        std::string text) = 0;
    // The board answers no more where it was: look for it by its name, and tell the link by found().
    virtual void missing(BoardLink& link) = 0;
    // Whether the answer that discovery got from an address is that of the board.
    virtual bool names(in_addr_t from, const std::string& answer, const std::string& board) const = 0;
    // Outlives the link.
    virtual RackLog::TransactionLog& log() noexcept = 0;
};

// A state machine that never blocks. start() takes calls, step() moves them on, and whoever drives it waits
// for watch()'s descriptors until wake(); both a lone call and a thousand boards at once run through here.
//
// Calls of a board are sent in the order in which they were started and end in that order. Several may be in
// flight; a write waits until the reads before it have been answered, and a missing answer has it and
// everything behind it sent again, in order, so that an old write never overtakes a new one. Calls that are
// Effect::Alone, and those over a stream, fly alone.
//
// A session that is not open is opened, and a port that is not known is looked up, before the call that needs
// it; a board that does not answer has both done again. Whoever answers at a board's address after it was
// silent, closed a connection or forgot a session has to say first that it is this board.
class BoardLink {
public:
    BoardLink(std::string board, in_addr_t address, Surroundings& around);
    BoardLink(const BoardLink&) = delete;
    BoardLink& operator=(const BoardLink&) = delete;

    // ---- Any thread ----

    const std::string& board() const noexcept { return board_; }
    const Tally& tally() const noexcept { return tally_; }
    // Where accesses leave their lines.
    RackLog::TransactionLog& log() const noexcept { return log_; }
    RackLog::Place place(const Session& session) const noexcept {
        return {board_, static_cast<int>(session.port), static_cast<int>(session.phy)};
    }
    in_addr_t address() const noexcept { return address_.load(std::memory_order_relaxed); }
    // The address at which the board was found; taken over at the next step.
    void found(in_addr_t address) noexcept { found_.store(address, std::memory_order_release); }

    Turn turn;

    // ---- The holder of the turn ----

    // The call stays the caller's and must not end before it is done or dropped. May throw std::bad_alloc.
    void start(Call& call, TimePoint now);
    // Takes what has arrived, sends what can be sent, ends what has run out of time. `streams`: whether
    // anything but a datagram may have arrived.
    void step(TimePoint now, bool streams = true);
    // Ends a call at once, whatever its stage.
    void drop(Call& call, Trouble why, TimePoint now);

    // Takes back a call that waits; it may be started again.
    void withdraw(Call& call) noexcept;
    // Whether there is nothing to do but wait before asking again.
    bool resting() const noexcept { return flying_.empty() && !errand_ && !probe_; }
    // As closed, whatever the board thinks.
    void closed(Session& session);
    // Whether an opening of the session is under way.
    bool opens(const Session& session) const noexcept;
    // Forgets an opening that is under way; to be called before the session ends.
    void abandon(const Session& session);

    // No call is under way.
    bool idle() const noexcept { return waiting_.empty() && flying_.empty(); }
    // When step() has something to do though nothing arrives.
    TimePoint wake(TimePoint now) const noexcept;
    // Fills in what to wait for and returns the number of entries.
    static constexpr std::size_t kMostWatched = 4;
    std::size_t watch(pollfd* entries) const noexcept; // the first takes datagrams
    // Whether anything but a datagram is waited for. The end of a connection that nobody waits for shows when
    // a datagram is missing, or at the next start().
    bool awaitsStreams() const noexcept {
        const Call* const call = errand_ ? errand_.get() : flying_.front();
        return probe_ || (call != nullptr && overStream(call->program));
    }
    // Changes when a descriptor of watch() is another one, though it may have the number of the former.
    unsigned socketsMade() const noexcept { return socketsMade_; }
    // A session whose calls wait for its hook, if the next call is one of them.
    Session* awaitingHook() const noexcept;
    // Calls in flight at most, 1 and up.
    void setWindow(unsigned calls) noexcept { window_ = calls; }
    // Datagrams of several calls travel together through these, and leave when the caller lets them; null:
    // each by itself.
    struct Trains {
        DatagramTrain departures;
        ArrivedTrain arrivals;
    };
    void travelBy(Trains* trains) noexcept { trains_ = trains; }

private:
    struct StreamOf {
        Program program;
        Stream stream;
    };

    static constexpr std::size_t kWindowBytes = 32768;
    static constexpr unsigned kDoubtAfter = 3; // answers missing in a row

    // Sending: BoardLink.cpp
    void advance(TimePoint now);
    bool isPrepared(const Call& call) const noexcept;
    bool mayFly(const Call& call) const noexcept;
    void launch(Call& call, TimePoint now);
    void transmit(Call& call, TimePoint now);
    void transmitByTrain(const char* request, std::size_t size, const sockaddr_in& to);
    void transmitOverStream(Call& call);
    void finish(Call& call, Trouble trouble, TimePoint now);

    // Answers: BoardLinkAnswers.cpp
    void receive(TimePoint now);
    void receiveTrains(ArrivedTrain& arrivals, TimePoint now);
    void takeDatagram(char* bytes, std::size_t length, const sockaddr_in& from, TimePoint now);
    void stepStreams(TimePoint now);
    Call* awaiting(std::uint32_t id) noexcept;
    bool isFrom(const Call& call, const sockaddr_in& sender) const noexcept;
    void answer(Call& call, char* bytes, std::size_t length, TimePoint now);
    void answerErrand(Trouble trouble, TimePoint now);
    void answerOpening(OpenCall& open, Trouble trouble, TimePoint now);
    void refused(const ErrorCall& error, TimePoint now);
    void deliver(TimePoint now);
    void postpone(Call& call, Trouble why, TimePoint now);
    void sessionForgotten(Call& call, TimePoint now);
    void goBack(Call& from);

    // Losses: BoardLinkHealing.cpp
    void checkPatience(TimePoint now);
    void checkDeadlines(TimePoint now);
    TimePoint patienceEnd(const Call& call) const noexcept;
    void lost(Call& call, TimePoint now);
    bool mayResend(const Call& first) const noexcept;
    void resendFrom(Call& first, TimePoint now);
    void sendAgainLater(Call& first);
    void loseErrand(TimePoint now);
    bool opensAgain(TimePoint now);
    bool prepared(Call& call, TimePoint now);
    bool needsPort(Program program) const noexcept;
    void beginErrand(std::unique_ptr<Call> errand, TimePoint now);
    void doubtPorts() noexcept;
    void moveTo(in_addr_t address);
    void portFound(const LookUpCall& lookUp, TimePoint now);
    void sessionOpened(const OpenCall& open);
    void streamEnded(StreamOf& which, TimePoint now);
    Trouble overdue(const Call& call) const noexcept;

    // Identity: BoardLinkIdentity.cpp
    void doubt() noexcept;
    void trust() noexcept;
    void beginProbe(TimePoint now);
    void stepProbe(TimePoint now);
    void keepForLate(std::unique_ptr<Call> opening);
    void nameLeftBehind(const Call* opening);
    void forgetLate();
    bool answeredLate(std::uint32_t id, char* bytes, std::size_t length, TimePoint now);

    StreamOf& streamOf(Program program) noexcept { return program == Program::Adc ? adc_ : setup_; }

    const std::string board_;
    Surroundings& around_;
    RackLog::TransactionLog& log_;
    std::atomic<in_addr_t> address_;
    std::atomic<in_addr_t> found_{0};
    Tally tally_;

    DatagramSocket datagrams_;
    StreamOf setup_{Program::Setup, {}};
    StreamOf adc_{Program::Adc, {}};
    std::array<std::uint16_t, kPrograms> ports_{}; // 0: never known
    unsigned doubts_ = 0;                          // bit for each program: to be looked up again before use
    RoundTrip roundTrip_;
    std::uint32_t nextId_;
    unsigned window_ = 8;
    Trains* trains_ = nullptr;

    CallList waiting_;
    CallList flying_;
    std::size_t inFlight_ = 0;
    std::size_t bytesInFlight_ = 0;
    std::unique_ptr<Call> errand_;                    // look-up or opening that the first waiting call needs
    std::vector<std::unique_ptr<Call>> lateOpenings_; // over the setup connection, asked for again since
    bool missing_ = false;                            // the rack looks for the board
    bool doubtful_ = false;                           // another board may be at the address
    unsigned socketsMade_ = 0;
    bool impostor_ = false; // and has said so
    std::unique_ptr<Probe> probe_;
    TimePoint probeEnd_{};
    TimePoint lastHeard_{};
    TimePoint nextDeadline_ = TimePoint::max();
};

inline std::size_t BoardLink::watch(pollfd* entries) const noexcept {
    std::size_t count = 0;
    if (datagrams_.descriptor() >= 0)
        entries[count++] = {datagrams_.descriptor(), POLLIN, 0};
    const auto add = [&](const Stream& stream) {
        if (stream.isOpen())
            entries[count++] = {stream.descriptor(), stream.events(), 0};
    };
    add(setup_.stream);
    add(adc_.stream);
    if (probe_)
        entries[count++] = probe_->watch();
    return count;
}

} // namespace Orvane::RackLink

// One question for each program, and the answers in whatever order they come.
#include "ov_sys/Interface/connection/PortsAhead.h"

#include "ov_sys/Interface/connection/ProgramSocket.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <poll.h>
#include <sys/socket.h>

namespace Orvane {
namespace {

constexpr std::chrono::milliseconds kPatience{100};
constexpr std::size_t kLongestAnswer = 1024;

thread_local PortsAhead* innermost = nullptr;

} // namespace

PortsAhead::PortsAhead(const std::string& host, unsigned long version,
                       std::initializer_list<Program> programs) noexcept
    : outer_(innermost), deadline_(Deadline::after(kPatience)) {
    innermost = this;
    if (inet_aton(host.c_str(), &board_) == 0)
        return;
    const std::uint32_t id = PortMapperCall::newId();
    std::uint32_t count = 0;
    for (const Program& program : programs) {
        calls_.at(count).emplace(id + count, program.number, version, program.protocol);
        ++count;
    }
    ask();
}

PortsAhead::~PortsAhead() {
    innermost = outer_;
}

inline void PortsAhead::ask() noexcept {
    ProgramPlace mapper{{}, false};
    mapper.address.sin_family = AF_INET;
    mapper.address.sin_addr = board_;
    mapper.address.sin_port = htons(PortMapperCall::kPort);
    socket_ = openSocket(mapper, deadline_);
    for (const std::optional<PortMapperCall>& call : calls_) {
        alignas(std::uint32_t) char request[256];
        if (!socket_ || !call)
            return;
        const std::size_t length = call->message().encodeTo(request, sizeof request);
        if (send(socket_.get(), request, length, MSG_DONTWAIT | MSG_NOSIGNAL) < 0)
            socket_.reset();
    }
}

// Waits for a datagram and gives it to the call that it answers, which ends when that names no port; false
// when none came or no more are to be expected.
inline bool PortsAhead::takeAnswer(const Deadline& deadline) noexcept {
    alignas(std::uint32_t) char answer[kLongestAnswer];
    if (!socket_ || !deadline.waitFor(socket_.get(), POLLIN))
        return false;
    const ssize_t length = recv(socket_.get(), answer, sizeof answer, MSG_DONTWAIT);
    if (length < 0)
        return errno == EAGAIN || errno == EINTR;
    bool allAnswered = true;
    for (std::optional<PortMapperCall>& call : calls_) {
        rpc_err error{};
        if (call && call->message().isAnsweredBy(answer, static_cast<std::size_t>(length))) {
            call->message().decodeFrom(answer, static_cast<std::size_t>(length), error);
            if (call->port() == 0)
                call.reset();
        }
        allAnswered = allAnswered && (!call || call->port() != 0);
    }
    if (allAnswered) // a process may be short of descriptors
        socket_.reset();
    return !deadline_.passed(); // foreign datagrams may keep coming
}

inline std::uint16_t PortsAhead::awaited(const std::optional<PortMapperCall>& call) noexcept {
    while (call && call->port() == 0)
        if (!takeAnswer(deadline_)) {
            socket_.reset();
            return 0;
        }
    while (takeAnswer(Deadline(Deadline::Clock::time_point()))) { // what has come beside it
    }
    return call ? call->port() : 0;
}

std::uint16_t PortsAhead::portOf(in_addr board, unsigned long program, unsigned long version,
                                 int protocol) noexcept {
    if (innermost == nullptr || innermost->board_.s_addr != board.s_addr)
        return 0;
    for (const std::optional<PortMapperCall>& call : innermost->calls_)
        if (call && call->asksFor(program, version, protocol))
            return innermost->awaited(call);
    return 0;
}

} // namespace Orvane

// One poll loop over both transports and a stop event.
#include "tests/support/rpc_protocol/LoopbackServer.h"

#include <arpa/inet.h>
#include <array>
#include <poll.h>
#include <stdexcept>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <utility>

namespace {

int required(int result) {
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), "loopback server");
    return result;
}

// A socket on a free port of 127.0.0.1, whose address goes to `address`.
Orvane::FileDescriptor boundSocket(int type, sockaddr_in& address) {
    Orvane::FileDescriptor descriptor(required(socket(AF_INET, type | SOCK_CLOEXEC, 0)));
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    required(bind(descriptor.get(), reinterpret_cast<sockaddr*>(&address), length));
    required(getsockname(descriptor.get(), reinterpret_cast<sockaddr*>(&address), &length));
    return descriptor;
}

ClientHandle made(CLIENT* client) {
    if (client == nullptr)
        throw std::runtime_error(clnt_spcreateerror("loopback server"));
    return ClientHandle(client);
}

bool readFully(int descriptor, WireBytes& bytes) {
    return bytes.empty() ||
           recv(descriptor, bytes.data(), bytes.size(), MSG_WAITALL) == static_cast<ssize_t>(bytes.size());
}

// Where the arguments start: behind six words, the credential and the verifier.
std::size_t argumentsIn(const WireBytes& message) {
    std::size_t offset = 24;
    for (int part = 0; part < 2; ++part)
        offset += 8 + (wordAt(message, offset + 4) + 3) / 4 * 4;
    return offset;
}

} // namespace

LoopbackServer::LoopbackServer()
    : udp_(boundSocket(SOCK_DGRAM, udpAddress_)),
      tcp_(boundSocket(SOCK_STREAM, tcpAddress_)),
      stop_(required(eventfd(0, EFD_CLOEXEC))) {
    required(listen(tcp_.get(), 4));
    thread_ = std::thread([this] { serve(); });
}

LoopbackServer::~LoopbackServer() {
    eventfd_write(stop_.get(), 1);
    thread_.join();
}

ClientHandle LoopbackServer::udpClient(unsigned long program) {
    int any = RPC_ANYSOCK;
    constexpr timeval kNoRetry{60, 0};
    return made(clntudp_bufcreate(&udpAddress_, program, 1, kNoRetry, &any, UDPMSGSIZE, UDPMSGSIZE));
}

ClientHandle LoopbackServer::tcpClient(unsigned long program) {
    int any = RPC_ANYSOCK;
    return made(clnttcp_create(&tcpAddress_, program, 1, &any, 0, 0));
}

void LoopbackServer::answerWith(const WireBytes& results) {
    set(Mode::Results, results);
}

void LoopbackServer::answerProgramUnavailable() {
    set(Mode::ProgramUnavailable, {});
}

void LoopbackServer::answerRaw(const WireBytes& bytes) {
    set(Mode::Raw, bytes);
}

void LoopbackServer::stayQuiet() {
    set(Mode::Quiet, {});
}

std::vector<RecordedCall> LoopbackServer::takeCalls() {
    const std::lock_guard<std::mutex> hold(mutex_);
    return std::exchange(calls_, {});
}

void LoopbackServer::set(Mode mode, const WireBytes& bytes) {
    const std::lock_guard<std::mutex> hold(mutex_);
    mode_ = mode;
    answer_ = bytes;
}

bool LoopbackServer::raw() {
    const std::lock_guard<std::mutex> hold(mutex_);
    return mode_ == Mode::Raw;
}

void LoopbackServer::serve() {
    for (;;) {
        std::array<pollfd, 4> ready{{{stop_.get(), POLLIN, 0},
                                     {udp_.get(), POLLIN, 0},
                                     {tcp_.get(), POLLIN, 0},
                                     {connection_.get(), POLLIN, 0}}};
        poll(ready.data(), ready.size(), -1);
        if (ready[0].revents != 0)
            return;
        if (ready[1].revents != 0)
            serveDatagram();
        if (ready[3].revents != 0 && !serveRecord()) {
            connection_.reset();
        }
        if (ready[2].revents != 0 && !connection_)
            connection_.reset(accept4(tcp_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    }
}

void LoopbackServer::serveDatagram() {
    WireBytes message(65536);
    sockaddr_in from{};
    socklen_t length = sizeof from;
    const ssize_t got =
        recvfrom(udp_.get(), message.data(), message.size(), 0, reinterpret_cast<sockaddr*>(&from), &length);
    if (got < 0)
        return;
    message.resize(static_cast<std::size_t>(got));
    const WireBytes reply = answerTo(message);
    if (!reply.empty())
        sendto(udp_.get(), reply.data(), reply.size(), 0, reinterpret_cast<sockaddr*>(&from), length);
}

// False when the connection has ended.
bool LoopbackServer::serveRecord() {
    WireBytes message;
    for (bool last = false; !last;) {
        WireBytes mark(4);
        if (!readFully(connection_.get(), mark))
            return false;
        last = (mark[0] & 0x80) != 0;
        mark[0] &= 0x7f;
        WireBytes fragment(wordAt(mark, 0));
        if (!readFully(connection_.get(), fragment))
            return false;
        append(message, fragment);
    }
    const WireBytes reply = answerTo(message);
    WireBytes record;
    if (!reply.empty() && !raw())
        appendWord(record, 0x80000000u | static_cast<unsigned>(reply.size()));
    append(record, reply);
    send(connection_.get(), record.data(), record.size(), MSG_NOSIGNAL);
    return true;
}

WireBytes LoopbackServer::answerTo(const WireBytes& message) {
    const std::lock_guard<std::mutex> hold(mutex_);
    const auto arguments = message.begin() + static_cast<long>(argumentsIn(message));
    calls_.push_back(
        {wordAt(message, 12), wordAt(message, 16), wordAt(message, 20), {arguments, message.end()}});
    if (mode_ == Mode::Quiet || mode_ == Mode::Raw)
        return answer_;
    WireBytes reply(message.begin(), message.begin() + 4);
    append(reply, wire("00000001 00000000 00000000 00000000"));
    append(reply, wire(mode_ == Mode::Results ? "00000000" : "00000001"));
    append(reply, answer_);
    return reply;
}

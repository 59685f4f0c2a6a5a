#include "tests/support/faults_unlocked/ClientWithoutLocks.h"

#include "ov_sys/Interface/rpc_protocol/Programs.h"

#include <arpa/inet.h>
#include <cstring>
#include <memory>
#include <rpc/rpc.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace OrvaneFaults {

std::uint32_t inProcessValue(std::uint32_t address) {
    return address * 2654435761U ^ 0x5A5A5A5AU;
}

namespace {

using Words = std::vector<std::uint32_t>;
namespace Programs = Orvane::Programs;

constexpr std::uint32_t kLastFragment = 0x80000000U;

/// The result of a call; `call` is everything from the transaction id on.
Words resultOf(const Words& call) {
    enum { Program = 3, Procedure = 5, Argument = 10 };
    constexpr std::uint32_t kSessionId = 1;
    constexpr std::uint32_t kFirstSequence = 100;
    if (call[Program] == Programs::Setup && call[Procedure] == 1) // open: id, key, sequence, status
        return {kSessionId, 0, kFirstSequence, 0};
    if (call[Program] == Programs::Setup && call[Procedure] == 4) // ping of a board
        return {call[Argument]};
    if (call[Program] != Programs::MDIO)
        return {0, 0}; // value, status
    const std::uint32_t count = call[Argument + 1];
    Words result{0, count};
    for (std::uint32_t i = 0; i < count; ++i)
        result.push_back(inProcessValue(call[Argument + 2 + i]));
    return result;
}

/// One connection: two ends and the thread that answers at one of them.
class Connection {
public:
    explicit Connection(bool stream) : stream_(stream) {
        if (socketpair(AF_UNIX, (stream ? SOCK_STREAM : SOCK_SEQPACKET) | SOCK_CLOEXEC, 0, ends_) == 0)
            server_ = std::thread([this] { serve(); });
        handle.cl_private = this;
        handle.cl_ops = &operations();
    }
    ~Connection() {
        shutdown(ends_[0], SHUT_RDWR);
        if (server_.joinable())
            server_.join();
        close(ends_[0]);
        close(ends_[1]);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    CLIENT handle{};

private:
    static CLIENT::clnt_ops& operations() {
        static CLIENT::clnt_ops table = [] {
            CLIENT::clnt_ops ours{};
            ours.cl_destroy = [](CLIENT* client) { delete static_cast<Connection*>(client->cl_private); };
            ours.cl_control = [](CLIENT* client, u_int request, void* value) -> bool_t {
                if (request == CLGET_FD)
                    std::memcpy(value, static_cast<Connection*>(client->cl_private)->ends_, sizeof(int));
                if (request == CLGET_SERVER_ADDR)
                    static_cast<sockaddr*>(value)->sa_family = AF_UNIX;
                return TRUE;
            };
            return ours;
        }();
        return table;
    }

    bool receive(Words& call) const {
        char bytes[8800];
        std::size_t wanted = sizeof bytes;
        if (stream_) {
            std::uint32_t mark = 0;
            if (recv(ends_[1], &mark, sizeof mark, MSG_WAITALL) != sizeof mark)
                return false;
            wanted = ntohl(mark) & ~kLastFragment;
        }
        const ssize_t length = recv(ends_[1], bytes, wanted, stream_ ? MSG_WAITALL : 0);
        if (length <= 0)
            return false;
        call.assign(static_cast<std::size_t>(length) / sizeof(std::uint32_t), 0);
        std::memcpy(call.data(), bytes, call.size() * sizeof(std::uint32_t));
        for (std::uint32_t& word : call)
            word = ntohl(word);
        return true;
    }

    void answer(const Words& call) const {
        Words reply{call[0], REPLY, MSG_ACCEPTED, AUTH_NONE, 0, SUCCESS};
        for (const std::uint32_t word : resultOf(call))
            reply.push_back(word);
        const std::size_t bytes = reply.size() * sizeof(std::uint32_t);
        if (stream_)
            reply.insert(reply.begin(), kLastFragment | static_cast<std::uint32_t>(bytes));
        for (std::uint32_t& word : reply)
            word = htonl(word);
        send(ends_[1], reply.data(), reply.size() * sizeof(std::uint32_t), MSG_NOSIGNAL);
    }

    void serve() const {
        for (Words call; receive(call);)
            answer(call);
    }

    bool stream_;
    int ends_[2] = {-1, -1};
    std::thread server_;
};

} // namespace
} // namespace OrvaneFaults

/// Stands before libtirpc's, for this program and the library that it loads.
extern "C" __attribute__((visibility("default"))) CLIENT* clnt_create(const char* host, rpcprog_t, rpcvers_t,
                                                                      const char* protocol) {
    if (std::strcmp(host, OrvaneFaults::kInProcessHost) != 0)
        return nullptr;
    return &(new OrvaneFaults::Connection(std::strcmp(protocol, "tcp") == 0))->handle;
}

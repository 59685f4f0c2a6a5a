// A tiny RPC server on 127.0.0.1 that records the calls it gets and answers them as it is told.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "tests/support/rpc_protocol/WireBytes.h"

#include <memory>
#include <mutex>
#include <netinet/in.h>
#include <thread>

struct RecordedCall {
    unsigned program;
    unsigned version;
    unsigned procedure;
    WireBytes arguments;
};

struct DestroyClient {
    void operator()(CLIENT* client) const { clnt_destroy(client); }
};
using ClientHandle = std::unique_ptr<CLIENT, DestroyClient>;

// Serves UDP and, one connection at a time, TCP on a thread of its own until it is destroyed. The other
// members may be used while it serves.
class LoopbackServer {
public:
    LoopbackServer();
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    // A handle for `program`, version 1, on this server.
    ClientHandle udpClient(unsigned long program);
    ClientHandle tcpClient(unsigned long program);

    // What every later call gets: a success reply with these results, a reply that the program is not there,
    // these bytes on the transport with no reply around them, or nothing.
    void answerWith(const WireBytes& results);
    void answerProgramUnavailable();
    void answerRaw(const WireBytes& bytes);
    void stayQuiet();

    // Every call since the start or the last takeCalls(). A call is recorded before it is answered.
    std::vector<RecordedCall> takeCalls();

private:
    enum class Mode { Results, ProgramUnavailable, Raw, Quiet };

    void serve();
    void serveDatagram();
    bool serveRecord();
    WireBytes answerTo(const WireBytes& message);
    void set(Mode mode, const WireBytes& bytes);
    bool raw();

    sockaddr_in udpAddress_{};
    sockaddr_in tcpAddress_{};
    Orvane::FileDescriptor udp_;
    Orvane::FileDescriptor tcp_;
    Orvane::FileDescriptor stop_;
    Orvane::FileDescriptor connection_; // of the serving thread
    std::mutex mutex_;                  // guards the three below
    Mode mode_ = Mode::Quiet;
    WireBytes answer_;
    std::vector<RecordedCall> calls_;
    std::thread thread_;
};

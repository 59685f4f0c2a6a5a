// A TCP server on the loop-back network that plays one conversation.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <functional>
#include <string>
#include <thread>

namespace OrvaneTest {

class LoopbackServer {
public:
    // Plays the server's side on a connected socket, which is closed when it returns.
    using Script = std::function<void(int connection)>;

    // Listens on 127.0.0.`host`; port 0 lets the system choose. Runs `script` on a thread of its own for the
    // first connection.
    explicit LoopbackServer(Script script, int host = 1, int port = 0);
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;
    // Waits for the script's end.
    ~LoopbackServer();

    int port() const;
    // Waits for the script's end.
    void join();

private:
    Orvane::FileDescriptor socket_;
    std::thread thread_;
};

// A socket that listens on 127.0.0.`host` and takes `backlog` connections in.
Orvane::FileDescriptor listenOnLoopback(int host, int port, int backlog);

// The port that a socket is bound to.
int boundPort(int socket);

// For scripts: the first `size` bytes that arrive; everything that arrives until the other side closes.
std::string receive(int connection, std::size_t size);
std::string receiveToEnd(int connection);
void sendText(int connection, const std::string& text);

} // namespace OrvaneTest

// The TCP sockets of a probe, as the system has them.
#include "ov_sys/Interface/foundation/Sockets.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <netinet/in.h>
#include <sys/socket.h>

namespace Orvane {

int create_tcp_socket() {
    const int created = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (created < 0) {
        Diagnostics::error("socket failed with error: ", get_last_error());
        return -1;
    }
    return created;
}

int connect_socket(int socket, const char* ip, int port) {
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(static_cast<std::uint16_t>(port));
    peer.sin_addr.s_addr = inet_addr(ip);
    return ::connect(socket, reinterpret_cast<const sockaddr*>(&peer), sizeof peer);
}

void close_socket(int socket) {
    const FileDescriptor closing(socket);
}

const char* get_last_error() {
    const int number = errno;
    if (const char* const text = strerrordesc_np(number))
        return text;
    thread_local char text[32];
    std::snprintf(text, sizeof text, "Unknown error %d", number);
    return text;
}

} // namespace Orvane

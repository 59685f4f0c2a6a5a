// Stands before the system's sendto().
#include "tests/support/discovery/ThrowingSend.h"

#include <stdexcept>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace OrvaneTest {
namespace {

thread_local bool ordered = false;

} // namespace

void throwFromNextSend() {
    ordered = true;
}

} // namespace OrvaneTest

// Stands before the system library's, for this program and the libraries that it loads.
extern "C" __attribute__((visibility("default"))) ssize_t
sendto(int fd, const void* bytes, size_t count, int flags, const sockaddr* to, socklen_t length) {
    if (std::exchange(OrvaneTest::ordered, false))
        throw std::runtime_error("thrown by the test");
    return syscall(SYS_sendto, fd, bytes, count, flags, to, length);
}

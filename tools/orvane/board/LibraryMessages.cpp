// The standard streams, led into memory and back.
#include "tools/orvane/board/LibraryMessages.h"

#include "tools/orvane/output/VisibleText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneTool {
namespace {

constexpr int kFirstDescriptor = 10; // clear of those that a shell hands down

int checked(int result, const char* what) {
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), what);
    return result;
}

int copyOf(int descriptor) {
    // A program may be started without the stream; it then has one that leads nowhere.
    if (::fcntl(descriptor, F_GETFD) < 0 && ::open("/dev/null", O_RDWR) < 0)
        throw std::system_error(errno, std::generic_category(), "cannot open /dev/null");
    return checked(::fcntl(descriptor, F_DUPFD_CLOEXEC, kFirstDescriptor), "cannot copy a standard stream");
}

// Read by a signal handler.
std::array<char, 256> abortText{};
volatile std::sig_atomic_t abortLength = 0;
volatile std::sig_atomic_t abortStream = STDERR_FILENO;

void tellAndExit(int) {
    const auto length = static_cast<std::size_t>(abortLength);
    [[maybe_unused]] const ssize_t written = ::write(abortStream, abortText.data(), length);
    ::_exit(1);
}

} // namespace

LibraryMessages::LibraryMessages()
    : out_(copyOf(STDOUT_FILENO)),
      err_(copyOf(STDERR_FILENO)),
      memory_(checked(::memfd_create("orvane-messages", MFD_CLOEXEC), "cannot make a buffer")) {
    checked(::fcntl(memory_.get(), F_SETFL, O_APPEND), "cannot make a buffer");
    checked(::dup2(memory_.get(), STDOUT_FILENO), "cannot redirect the standard output");
    checked(::dup2(memory_.get(), STDERR_FILENO), "cannot redirect the standard error");
}

LibraryMessages::~LibraryMessages() {
    std::fflush(stdout);
    ::dup2(out(), STDOUT_FILENO);
    ::dup2(err(), STDERR_FILENO);
}

std::string LibraryMessages::take() {
    std::fflush(stdout);
    std::string text;
    std::array<char, 4096> room{};
    ssize_t count = 0;
    while ((count = ::pread(memory_.get(), room.data(), room.size(), taken_)) > 0) {
        text.append(room.data(), static_cast<std::size_t>(count));
        taken_ += count;
    }
    return text;
}

void LibraryMessages::explainAborts(int err, const std::string& activity) {
    const std::string text =
        fmt::format("orvane: {}: the board's answer does not fit the question\n", visible(activity));
    const std::size_t length = std::min(text.size(), abortText.size());
    abortLength = 0;
    std::copy_n(text.begin(), length, abortText.begin());
    abortLength = static_cast<int>(length);
    abortStream = err;
    std::signal(SIGABRT, tellAndExit);
}

} // namespace OrvaneTool

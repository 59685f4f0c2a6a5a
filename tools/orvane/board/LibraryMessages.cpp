// The library's lines, kept until they are asked for.
#include "tools/orvane/board/LibraryMessages.h"

#include "ov_sys/Interface/foundation/DiagnosticsSink.h"
#include "tools/orvane/output/VisibleText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <fmt/format.h>
#include <system_error>
#include <utility>

namespace OrvaneTool {
namespace {

// What is opened takes the lowest number that is free.
void keepStandardStreamsOpen() {
    int opened = STDIN_FILENO;
    while (opened <= STDERR_FILENO) {
        opened = ::open("/dev/null", O_RDWR);
        if (opened < 0)
            throw std::system_error(errno, std::generic_category(), "cannot open /dev/null");
    }
    ::close(opened);
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

LibraryMessages::LibraryMessages() {
    keepStandardStreamsOpen();
    Orvane::Diagnostics::setSink([this](const Orvane::Diagnostics::Message& message) {
        const std::lock_guard<std::mutex> lock(mutex_);
        lines_.append(message.line).append("\n");
    });
}

LibraryMessages::~LibraryMessages() {
    Orvane::Diagnostics::setSink(nullptr);
}

std::string LibraryMessages::take() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(lines_, {});
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

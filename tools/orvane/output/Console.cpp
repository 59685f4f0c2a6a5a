// Writing, terminals and colours.
#include "tools/orvane/output/Console.h"

#include "tools/commandline/Wrap.h"
#include "tools/orvane/output/Errors.h"

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace OrvaneTool {
namespace {

std::string environment(const char* name) {
    const char* text = std::getenv(name); // NOLINT(concurrency-mt-unsafe)
    return text ? text : "";
}

const char* code(Colour colour) {
    switch (colour) {
    case Colour::Red:
        return "31";
    case Colour::Green:
        return "32";
    case Colour::Yellow:
        return "33";
    case Colour::Blue:
        return "36";
    case Colour::Dim:
        return "2";
    case Colour::Bold:
        return "1";
    case Colour::None:
        break;
    }
    return "0";
}

} // namespace

Stream::Stream(int descriptor)
    : descriptor_(descriptor),
      terminal_(::isatty(descriptor) == 1),
      colour_(terminal_ && environment("NO_COLOR").empty() && environment("TERM") != "dumb") {}

unsigned Stream::width() const {
    return terminalWidth(descriptor_);
}

unsigned Stream::height() const {
    winsize size{};
    const bool known = terminal_ && ::ioctl(descriptor_, TIOCGWINSZ, &size) == 0 && size.ws_row > 0;
    return known ? size.ws_row : 24U;
}

void Stream::flush() {
    const std::string text = std::exchange(buffer_, {});
    std::string_view left = text;
    while (!left.empty()) {
        const ssize_t written = ::write(descriptor_, left.data(), left.size());
        if (written >= 0)
            left.remove_prefix(static_cast<std::size_t>(written));
        else if (errno == EPIPE || errno == EIO) // a reader that left, a terminal that is gone
            throw OutputClosed{};
        else if (errno != EINTR)
            throw Failure(std::string("cannot write the output: ") + errorText(errno));
    }
}

void Stream::requireReader() const {
    pollfd entry{descriptor_, 0, 0};
    if (::poll(&entry, 1, 0) > 0 && (entry.revents & (POLLERR | POLLHUP)) != 0)
        throw OutputClosed{};
}

void Stream::flushWhenFull() {
    constexpr std::size_t kFull = std::size_t{64} * 1024;
    if (buffer_.size() >= kFull)
        flush();
}

void Stream::flushIfPossible() noexcept {
    try {
        flush();
    } catch (const OutputClosed&) {
    } catch (const std::exception&) {
    }
}

Painted Stream::painted(Colour colour, std::string_view text) const {
    if (!colour_ || colour == Colour::None)
        return {visible(text)};
    return {fmt::format("\033[{}m{}\033[0m", code(colour), visible(text))};
}

} // namespace OrvaneTool

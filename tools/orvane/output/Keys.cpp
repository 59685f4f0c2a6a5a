// The terminal without lines, and the sequences that keys send.
#include "tools/orvane/output/Keys.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <poll.h>
#include <string_view>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace OrvaneTool {
namespace {

termios before{}; // as it was, while `changed`
std::atomic<bool> changed{false};

// What terminals send for them.
constexpr std::array<std::pair<std::string_view, Key>, 15> kKeys{{{"\033[A", Key::Up},
                                                                  {"k", Key::Up},
                                                                  {"\033[B", Key::Down},
                                                                  {"j", Key::Down},
                                                                  {"\r", Key::Down},
                                                                  {"\n", Key::Down},
                                                                  {"\033[5~", Key::PageUp},
                                                                  {"b", Key::PageUp},
                                                                  {"\033[6~", Key::PageDown},
                                                                  {" ", Key::PageDown},
                                                                  {"\033[H", Key::Home},
                                                                  {"g", Key::Home},
                                                                  {"\033[F", Key::End},
                                                                  {"G", Key::End},
                                                                  {"q", Key::Quit}}};

} // namespace

Keys::Keys(bool wanted) : available_(wanted && ::tcgetattr(STDIN_FILENO, &before) == 0) {
    if (!available_)
        return;
    termios raw = before;
    raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    raw.c_cc[VMIN] = 0;
    raw.c_cc[VTIME] = 0;
    changed = true;
    available_ = ::tcsetattr(STDIN_FILENO, TCSANOW, &raw) == 0;
}

Keys::~Keys() {
    restoreTerminal();
}

Key Keys::wait(std::chrono::milliseconds time, int wake) {
    if (!typed_.empty())
        return next();
    std::array<pollfd, 2> events{{{wake, POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
    const int count = ::poll(events.data(), available_ ? 2 : 1, static_cast<int>(time.count()));
    if (count <= 0 || events[1].revents == 0)
        return Key::None;
    std::array<char, 64> sent{};
    const ssize_t got = ::read(STDIN_FILENO, sent.data(), sent.size());
    available_ = got > 0; // otherwise the terminal is gone
    typed_.assign(sent.data(), available_ ? static_cast<std::size_t>(got) : 0);
    return next();
}

// The first of what was typed; what means nothing is passed over.
Key Keys::next() {
    while (!typed_.empty()) {
        for (const auto& [text, key] : kKeys)
            if (typed_.compare(0, text.size(), text) == 0) {
                typed_.erase(0, text.size());
                return key;
            }
        typed_.erase(0, 1);
    }
    return Key::None;
}

void restoreTerminal() noexcept {
    if (changed.exchange(false))
        ::tcsetattr(STDIN_FILENO, TCSANOW, &before);
}

} // namespace OrvaneTool

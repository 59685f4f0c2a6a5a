// Redrawing of one line of a terminal.
#include "tools/orvane/output/Progress.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace OrvaneTool {
namespace {

constexpr std::string_view kClearLine = "\r\033[K";

// A terminal that has gone away must not end what is being shown.
void showOn(Stream& stream, const std::string& text) {
    stream.writeAsIs(text);
    stream.flushIfPossible();
}

} // namespace

Spinner::Spinner(Stream& stream, const std::string& text) : stream_(stream), text_(visible(text)) {
    if (stream_.isTerminal())
        thread_ = std::thread([this] { turn(); });
}

Spinner::~Spinner() {
    if (!thread_.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        done_ = true;
    }
    ended_.notify_all();
    thread_.join();
    showOn(stream_, std::string(kClearLine));
}

void Spinner::say(const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    text_ = visible(text);
}

void Spinner::turn() {
    constexpr std::array kSigns{'|', '/', '-', '\\'};
    constexpr std::chrono::milliseconds kPace{100};
    std::unique_lock<std::mutex> lock(mutex_);
    std::size_t step = 0;
    do
        showOn(stream_, fmt::format("{}{} {}", kClearLine, kSigns[step++ % kSigns.size()], text_));
    while (!ended_.wait_for(lock, kPace, [this] { return done_; }));
}

ProgressBar::ProgressBar(Stream& stream, const std::string& text, std::size_t total)
    : stream_(stream), text_(visible(text)), total_(std::max<std::size_t>(total, 1)) {}

ProgressBar::~ProgressBar() {
    if (stream_.isTerminal())
        showOn(stream_, std::string(kClearLine));
}

void ProgressBar::show(std::size_t done) {
    constexpr std::size_t kCells = 30;
    if (!stream_.isTerminal())
        return;
    before_ = shown_ ? before_ : done;
    shown_ = true;
    const std::size_t full = std::min(done, total_) * kCells / total_;
    showOn(stream_, fmt::format("{}{} [{}{}] {}/{}{}", kClearLine, text_, std::string(full, '#'),
                                std::string(kCells - full, '.'), done, total_, pace(done)));
}

std::string ProgressBar::pace(std::size_t done) const {
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begun_).count();
    if (seconds < 1 || done <= before_)
        return {};
    const double rate = static_cast<double>(done - before_) / seconds;
    return fmt::format(", {:.0f} a second, {:.0f} s left", rate,
                       static_cast<double>(total_ - std::min(done, total_)) / rate);
}

} // namespace OrvaneTool

// How a line becomes one write, or one call of the application's sink.
#include "ov_sys/Interface/foundation/Diagnostics.h"

#include "ov_sys/Interface/foundation/Uncancelled.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <new>
#include <utility>

namespace Orvane::Diagnostics {
namespace {

struct Installed {
    Sink sink;
    unsigned calls = 0;   // under way
    bool retired = false; // to be deleted by the last of them
};

// Lines are told until the library's last object is gone: nothing here has a destructor.
std::mutex sinkMutex; // guards the pointer and what Installed counts
Installed* installed = nullptr;
thread_local bool insideSink = false;
thread_local const char* boardOfThread = "";

// One call of the sink, if there is one and this thread is not in it already.
class SinkCall {
public:
    SinkCall() {
        const std::lock_guard<std::mutex> lock(sinkMutex);
        if (insideSink || installed == nullptr)
            return;
        called_ = installed;
        ++called_->calls;
        insideSink = true;
    }

    ~SinkCall() {
        if (called_ == nullptr)
            return;
        insideSink = false;
        const std::lock_guard<std::mutex> lock(sinkMutex);
        if (--called_->calls == 0 && called_->retired)
            delete called_;
    }

    SinkCall(const SinkCall&) = delete;
    SinkCall& operator=(const SinkCall&) = delete;

    const Sink* sink() const { return called_ != nullptr ? &called_->sink : nullptr; }

private:
    Installed* called_ = nullptr;
};

// Puts `next` in place and returns the former one when its calls have ended; null when there was none, or
// when it is left to its last call.
Installed* exchange(Installed* next, bool wait) noexcept {
    constexpr timespec kPause{0, 1'000'000};
    std::unique_lock<std::mutex> lock(sinkMutex);
    Installed* const former = std::exchange(installed, next);
    if (former == nullptr)
        return nullptr;
    for (; former->calls != 0; lock.lock()) {
        if (!wait) {
            former->retired = true;
            return nullptr;
        }
        lock.unlock();
        nanosleep(&kPause, nullptr);
    }
    return former;
}

std::string joined(std::initializer_list<Piece> pieces) {
    std::string line;
    for (const Piece& piece : pieces)
        line += piece.text();
    return line += '\n';
}

std::FILE* streamOf(Level level) {
    return level == Level::Information ? stdout : stderr;
}

void print(Level level, std::string_view text) noexcept {
    std::fwrite(text.data(), 1, text.size(), streamOf(level));
}

void tell(const Sink& sink, Level level, std::string line) {
    while (!line.empty() && line.back() == '\n')
        line.pop_back();
    const std::size_t begin = std::min(line.find_first_not_of('\n'), line.size());
    sink({level, boardOfThread, std::chrono::system_clock::now(), line.c_str() + begin});
}

void deliver(Level level, std::string line) {
    const SinkCall call;
    if (call.sink() == nullptr)
        return print(level, line);
    try {
        tell(*call.sink(), level, std::move(line));
    } catch (...) { // the application's own affair
    }
}

// The last of the library's functions to run, after its objects are gone, when it is unloaded or the process
// ends.
[[gnu::destructor(101)]] void dropSink() {
    delete exchange(nullptr, false);
}

} // namespace

std::size_t Piece::hexadecimal(unsigned number) {
    char* const end = std::to_chars(digits_, digits_ + kMostDigits, number, 16).ptr;
    std::transform(digits_, end, digits_,
                   [](char digit) { return digit >= 'a' ? digit - 'a' + 'A' : digit; });
    return static_cast<std::size_t>(end - digits_);
}

void setSink(Sink sink) {
    delete exchange(sink ? new Installed{std::move(sink)} : nullptr, !insideSink);
}

void report(Level level, std::initializer_list<Piece> pieces) noexcept {
    const Uncancelled uncancelled; // writing is a cancellation point, which noexcept does not survive
    try {
        deliver(level, joined(pieces));
    } catch (const std::bad_alloc&) {
        for (const Piece& piece : pieces)
            print(level, piece.text());
        print(level, "\n");
    }
    std::fflush(streamOf(level));
}

BoardScope::BoardScope(const std::string& board) noexcept
    : outer_(std::exchange(boardOfThread, board.c_str())) {}

BoardScope::~BoardScope() {
    boardOfThread = outer_;
}

} // namespace Orvane::Diagnostics

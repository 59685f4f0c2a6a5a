// Writing, and taking back what is no whole line.
#include "ov_sys/rack/log/LogFile.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Orvane::RackLog {
namespace {

[[noreturn]] void fail(int number) {
    throw std::system_error(number, std::generic_category());
}

// Keeps the signal of a pipe without reader from the process.
class NoPipeSignal {
public:
    explicit NoPipeSignal(bool wanted) noexcept {
        if (!wanted)
            return;
        sigset_t pending;
        sigpending(&pending);
        if (sigismember(&pending, SIGPIPE) != 0)
            return; // it is blocked, and somebody else's
        sigemptyset(&signal_);
        sigaddset(&signal_, SIGPIPE);
        active_ = pthread_sigmask(SIG_BLOCK, &signal_, &former_) == 0;
    }
    ~NoPipeSignal() {
        if (!active_)
            return;
        const int number = errno;
        const timespec atOnce{};
        while (sigtimedwait(&signal_, nullptr, &atOnce) < 0 && errno == EINTR) {
        }
        pthread_sigmask(SIG_SETMASK, &former_, nullptr);
        errno = number;
    }
    NoPipeSignal(const NoPipeSignal&) = delete;
    NoPipeSignal& operator=(const NoPipeSignal&) = delete;

private:
    sigset_t signal_{};
    sigset_t former_{};
    bool active_ = false;
};

} // namespace

LogFile::LogFile(const std::string& path)
    : file_(::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, 0666)) {
    if (!file_)
        fail(errno);
    struct stat about {};
    pipe_ = fstat(file_.get(), &about) == 0 && S_ISFIFO(about.st_mode);
}

bool LogFile::empty() const noexcept {
    struct stat about {};
    return fstat(file_.get(), &about) != 0 || !S_ISREG(about.st_mode) || about.st_size == 0;
}

// What could not be written, errno saying why; empty when all was.
std::string_view LogFile::write(std::string_view text) const noexcept {
    const NoPipeSignal quiet(pipe_);
    while (!text.empty()) {
        const ssize_t count = ::write(file_.get(), text.data(), text.size());
        if (count < 0 && errno != EINTR)
            break;
        text.remove_prefix(count < 0 ? 0 : static_cast<std::size_t>(count));
    }
    return text;
}

// Only the last bytes of the file, and only if they are ours.
bool LogFile::takeBack(std::size_t bytes) const noexcept {
    struct stat about {};
    const off_t end = lseek(file_.get(), 0, SEEK_CUR); // behind what was written last
    return end >= 0 && fstat(file_.get(), &about) == 0 && about.st_size == end &&
           ftruncate(file_.get(), end - static_cast<off_t>(bytes)) == 0;
}

void LogFile::append(std::string_view lines) {
    if (cut_ && !write("#cut\n").empty())
        fail(errno);
    cut_ = false;
    const std::size_t written = lines.size() - write(lines).size();
    if (written == lines.size())
        return;
    const int number = errno;
    cut_ = written > 0 && !takeBack(written);
    fail(number);
}

} // namespace Orvane::RackLog

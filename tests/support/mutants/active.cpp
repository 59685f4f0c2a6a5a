// Which change of the library is active, and which were reached, in a build for ./check mutants.
#include <atomic>
#include <cstdlib>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr unsigned kNumbers = 1U << 26U;

std::atomic<char> seen[kNumbers];

unsigned chosen() noexcept {
    const char* const number = std::getenv("ORVANE_MUTANT");
    return number != nullptr ? static_cast<unsigned>(std::strtoul(number, nullptr, 10)) : kNumbers;
}

int openRecord() noexcept {
    const char* const path = std::getenv("ORVANE_MUTANTS_REACHED");
    return path != nullptr ? open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666) : -1;
}

const unsigned active = chosen();
const int record = openRecord();

} // namespace

// Whether the change of this number is to be made. Any thread. Numbers go to the record when they are first
// asked for, so that it is complete however the process ends.
extern "C" bool orvane_mutant(unsigned number) noexcept {
    if (record >= 0 && seen[number % kNumbers].exchange(1, std::memory_order_relaxed) == 0)
        syscall(SYS_write, record, &number, sizeof number); // write() would be a cancellation point
    return number == active;
}

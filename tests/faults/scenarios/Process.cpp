// Counts descriptors, threads and memory.
#include "tests/faults/scenarios/Process.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <thread>
#include <unistd.h>

namespace OrvaneFaults {
namespace {

std::size_t entriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace

Holdings Holdings::now() {
    Holdings result;
    result.descriptors = entriesOf("/proc/self/fd") - 1; // the look itself
    result.threads = entriesOf("/proc/self/task");
    const struct mallinfo2 heap = mallinfo2();
    result.heapBytes = heap.uordblks + heap.hblkhd;
    std::size_t total = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    result.residentBytes = resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return result;
}

void expectFlat(Report& report, const std::string& during, const Holdings& before, std::size_t slackBytes) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    Holdings after = Holdings::now();
    const auto grown = [&] {
        return after.descriptors > before.descriptors || after.threads > before.threads ||
               after.heapBytes > before.heapBytes + slackBytes;
    };
    while (grown() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        after = Holdings::now();
    }
    report.expect(after.descriptors <= before.descriptors, during, ": descriptors grew from ",
                  before.descriptors, " to ", after.descriptors);
    report.expect(after.threads <= before.threads, during, ": threads grew from ", before.threads, " to ",
                  after.threads);
    report.expect(after.heapBytes <= before.heapBytes + slackBytes, during, ": heap grew from ",
                  before.heapBytes, " to ", after.heapBytes, " bytes");
}

} // namespace OrvaneFaults

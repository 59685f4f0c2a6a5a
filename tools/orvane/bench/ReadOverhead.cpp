// orvane-read-overhead: what `orvane read` of one register takes beyond the library's own time.
//
// Run beside a board whose address is known: orvane-read-overhead TOOL ADDRESS DEVICE [RUNS]. Starts the tool
// and a program that makes the same calls of the library and nothing else (this one, with --library) in
// turns, and compares their times from start to end; then the tool one after the other and four at a time.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <orvane/orvane.hpp>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

[[noreturn]] void readByLibrary(const std::string& address, const std::string& device) {
    auto& library = HW_Interface_Object;
    library.refreshDevices("", address);
    const auto adapter = static_cast<unsigned>(library.deviceIndex(device));
    library.openAdapter(adapter);
    std::printf("0x%04X\n", library.readAdapter(adapter, 3, 1, 2));
    std::fflush(stdout);
    // Ends as the tool does: closing the adapter would wait for the keep-alive thread, 200 ms or not at all.
    for (const auto& entry : library.devices[adapter]->sessions)
        Orvane::Setup::closeConnection(*entry->session);
    ::_exit(0);
}

pid_t started(std::vector<std::string> words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    const int problem = posix_spawn(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (problem != 0)
        throw std::system_error(problem, std::generic_category(), words[0]);
    return process;
}

// Time of so many processes from the first start to the last end, some of them at a time; throws when one
// fails.
double timeOf(const std::vector<std::string>& words, int processes = 1, int atATime = 1) {
    const auto start = std::chrono::steady_clock::now();
    int running = 0;
    for (int begun = 0; begun < processes || running > 0;) {
        if (begun < processes && running < atATime) {
            started(words);
            ++begun;
            ++running;
            continue;
        }
        int status = 0;
        if (::wait(&status) < 0 || status != 0)
            throw std::runtime_error(words[0] + " failed");
        --running;
    }
    return Milliseconds(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

int compare(const std::string& self, const std::string& tool, const std::string& address,
            const std::string& device, int runs) {
    constexpr int kTogether = 4;
    const std::vector<std::string> read{tool, "read", device, "3", "1.2", "--address", address};
    std::vector<double> ofTool;
    std::vector<double> ofLibrary;
    std::vector<double> more; // of the two beside each other
    std::vector<double> ratios;
    for (int i = 0; i < runs; ++i) {
        ofLibrary.push_back(timeOf({self, "--library", address, device}));
        ofTool.push_back(timeOf(read));
        more.push_back(ofTool.back() - ofLibrary.back());
        ratios.push_back(timeOf(read, 2 * kTogether, kTogether) / timeOf(read, 2 * kTogether, 1));
    }
    std::printf("medians of %d runs: library %.1f ms, orvane read %.1f ms, difference %.1f ms\n", runs,
                median(ofLibrary), median(ofTool), median(more));
    std::printf("eight reads, four at a time: %.2f times as long as one after the other\n", median(ratios));
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4 && argc != 5) {
        std::fputs("Usage: orvane-read-overhead TOOL ADDRESS DEVICE [RUNS]\n", stderr);
        return 2;
    }
    try {
        if (std::strcmp(argv[1], "--library") == 0)
            readByLibrary(argv[2], argv[3]);
        const int runs = argc > 4 ? std::clamp(std::stoi(argv[4]), 1, 1000) : 21;
        return compare(argv[0], argv[1], argv[2], argv[3], runs);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvane-read-overhead: %s\n", problem.what());
        return 1;
    }
}

// Runs the program under callgrind and adds up what its output says of the library.
#include "tests/support/performance/Callgrind.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace OrvaneTest {
namespace {

constexpr unsigned long kTimes = 20;

bool begins(const std::string& line, const char* with) {
    return line.rfind(with, 0) == 0;
}

// The instructions that callgrind's profile charges to the library: the lines "position cost" while the
// library is the object, but for those that repeat what a callee took.
unsigned long ownInstructions(std::istream& profile) {
    unsigned long sum = 0;
    bool own = false;
    bool ofCallee = false;
    for (std::string line; std::getline(profile, line);) {
        if (begins(line, "ob="))
            own = line.find("/liborvane.so") != std::string::npos;
        if (!line.empty() && line.front() >= '0' && line.front() <= '9') {
            unsigned long position = 0;
            unsigned long cost = 0;
            std::istringstream(line) >> position >> cost;
            if (own && !ofCallee)
                sum += cost;
        }
        ofCallee = begins(line, "calls=");
    }
    return sum;
}

int run(std::vector<std::string> command) {
    std::vector<char*> arguments;
    for (std::string& word : command)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t process = -1;
    int status = -1;
    if (posix_spawnp(&process, arguments.front(), nullptr, nullptr, arguments.data(), environ) != 0)
        throw std::runtime_error("cannot run " + command.front());
    waitpid(process, &status, 0);
    return status;
}

std::filesystem::path temporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "orvane-count-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    return name;
}

} // namespace

unsigned long instructionsOf(const std::string& operation, const std::string& boardAddress) {
    const auto program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "counted_calls";
    const auto folder = temporaryFolder();
    const auto profile = folder / "profile";
    const int status =
        run({"valgrind", "--quiet", "--tool=callgrind", "--collect-atstart=no", "--compress-strings=no",
             "--compress-pos=no", "--callgrind-out-file=" + profile.string(), program.string(), operation,
             std::to_string(kTimes), boardAddress});
    std::ifstream file(profile);
    const unsigned long sum = ownInstructions(file);
    std::filesystem::remove_all(folder);
    if (status != 0 || sum == 0)
        throw std::runtime_error("counted_calls '" + operation + "' was not counted");
    return sum / kTimes;
}

} // namespace OrvaneTest

// Starting the interpreter.
#include "tools/orvane/cli/Python.h"

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "tools/orvane/output/Errors.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvaneTool {
namespace {

constexpr const char* kNeeds = "It needs Python and its package orvane (Debian: python3-orvane)";

// A package that is missing is told apart from one that cannot be imported; it ends with `status`, made of
// the text.
std::string programOf(const std::string& module, const std::string& status) {
    return fmt::format(R"(import sys
try:
    from orvane.{0} import main
except ModuleNotFoundError as problem:
    if problem.name not in ('orvane', 'orvane.{0}', 'orvane.{0}'.rpartition('.')[0]):
        raise
    text = 'the Python package orvane is missing for ' + sys.executable + ' (Debian: python3-orvane)'
    sys.exit({1})
sys.exit(main())
)",
                       module, status);
}

const char* interpreter() {
    const char* const chosen =
        std::getenv("ORVANE_PYTHON"); // NOLINT(concurrency-mt-unsafe): before any thread
    return chosen != nullptr && *chosen != '\0' ? chosen : "python3";
}

// The words of its command line; they live as long as the object.
class CommandLine {
public:
    CommandLine(const std::string& program, const std::vector<std::string>& words)
        : words_{interpreter(), "-c", program} {
        words_.insert(words_.end(), words.begin(), words.end());
        for (std::string& word : words_)
            pointers_.push_back(word.data());
        pointers_.push_back(nullptr);
    }
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    char** data() { return pointers_.data(); }

private:
    std::vector<std::string> words_;
    std::vector<char*> pointers_;
};

std::string everythingFrom(int file) {
    std::string text;
    std::array<char, 65536> some{};
    for (;;) {
        const ssize_t count = ::read(file, some.data(), some.size());
        if (count > 0)
            text.append(some.data(), static_cast<std::size_t>(count));
        else if (count == 0 || errno != EINTR)
            return text;
    }
}

int statusOf(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR)
        continue;
    return status;
}

// Starts it with its standard output into the pipe. Returns an errno value.
int spawn(pid_t& process, int output, char** words) {
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    const int problem = ::posix_spawnp(&process, words[0], &actions, nullptr, words, environ);
    ::posix_spawn_file_actions_destroy(&actions);
    return problem;
}

} // namespace

void becomePython(const std::string& verb, const std::string& module, const std::vector<std::string>& words) {
    CommandLine line(programOf(module, fmt::format("'orvane: {}: ' + text", verb)), words);
    ::execvp(line.data()[0], line.data());
    throw Failure(fmt::format("{}: {}: {}. {}", verb, line.data()[0], errorText(errno), kNeeds));
}

std::string printedByPython(const std::string& module, const std::vector<std::string>& words) {
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw Failure(errorText(errno));
    const Orvane::FileDescriptor output(ends[0]);
    Orvane::FileDescriptor input(ends[1]);
    CommandLine line(programOf(module, "print(text) or 1"), words);
    pid_t process = -1;
    if (const int problem = spawn(process, input.get(), line.data()); problem != 0)
        throw Failure(fmt::format("{}: {}. {}", line.data()[0], errorText(problem), kNeeds));
    input.reset();
    std::string text = everythingFrom(output.get());
    if (statusOf(process) != 0)
        throw Failure(text.empty() ? fmt::format("{} failed. {}", line.data()[0], kNeeds)
                                   : text.substr(0, text.find_last_not_of('\n') + 1));
    return text;
}

} // namespace OrvaneTool

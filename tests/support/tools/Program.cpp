// Starts the program on pipes or a terminal, and waits for its end.
#include "tests/support/tools/Program.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <pty.h>
#include <set>
#include <spawn.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace OrvaneTest {
namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

std::vector<std::string> variables(const Environment& added) {
    const std::set<std::string> left{"NO_COLOR",       "ORVANE_ADDRESS",  "EXCLUSIVE_KEY",
                                     "CONCURRENT_KEY", "SIMPLE_KEY",      "TERM",
                                     "ORVANE_LOG",     "XDG_CONFIG_HOME", "XDG_CACHE_HOME"};
    std::vector<std::string> result{"TERM=xterm"};
    for (const std::string name : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) // nothing of the user's
        if (added.count(name) == 0)
            result.push_back(name + "=/dev/null");
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        const std::string name = text.substr(0, text.find('='));
        if (left.count(name) == 0 && added.count(name) == 0)
            result.push_back(text);
    }
    for (const auto& [name, value] : added)
        result.push_back(name + "=" + value);
    return result;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (std::string& text : texts)
        list.push_back(text.data());
    list.push_back(nullptr);
    return list;
}

std::string contentOf(int descriptor) {
    std::string text;
    std::array<char, 4096> room{};
    ssize_t count = 0;
    while ((count = ::pread(descriptor, room.data(), room.size(), static_cast<off_t>(text.size()))) > 0)
        text.append(room.data(), static_cast<std::size_t>(count));
    return text;
}

} // namespace

bool operator==(const Outcome& left, const Outcome& right) {
    return left.status == right.status && left.output == right.output && left.error == right.error;
}

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << "status " << outcome.status << "\noutput:\n"
                  << outcome.output << "error:\n"
                  << outcome.error;
}

Program::Program(const Arguments& arguments, const Environment& environment, Streams streams) {
    int terminal = -1;
    if (streams != Streams::Kept) {
        winsize size{50, static_cast<unsigned short>(streams == Streams::Narrow ? 60 : 100), 0, 0};
        if (::openpty(&output_, &terminal, nullptr, nullptr, &size) != 0)
            fail("openpty");
        ::fcntl(output_, F_SETFD, FD_CLOEXEC);
    } else {
        output_ = ::memfd_create("output", MFD_CLOEXEC);
        error_ = ::memfd_create("error", MFD_CLOEXEC);
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (terminal >= 0)
        posix_spawn_file_actions_adddup2(&actions, terminal, 0);
    else
        posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, terminal >= 0 ? terminal : output_, 1);
    posix_spawn_file_actions_adddup2(&actions, terminal >= 0 ? terminal : error_, 2);
    std::vector<std::string> words{ORVANE_TOOL};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> settings = variables(environment);
    const int problem = ::posix_spawn(&process_, ORVANE_TOOL, &actions, nullptr, pointers(words).data(),
                                      pointers(settings).data());
    posix_spawn_file_actions_destroy(&actions);
    if (terminal >= 0)
        ::close(terminal);
    if (problem != 0) {
        errno = problem;
        fail(ORVANE_TOOL);
    }
}

Program::~Program() {
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    ::close(output_);
    if (error_ >= 0)
        ::close(error_);
}

void Program::signal(int number) const {
    ::kill(process_, number);
}

void Program::type(const std::string& keys) const {
    if (::write(output_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()))
        fail("write to the terminal");
}

void Program::waitForOutput(const std::string& text) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (contentOf(output_).find(text) == std::string::npos) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("the program did not print: " + text);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

std::string Program::terminalText() const {
    std::string text;
    std::array<char, 4096> room{};
    ssize_t count = 0;
    while ((count = ::read(output_, room.data(), room.size())) > 0) // an error once nobody has the other side
        text.append(room.data(), static_cast<std::size_t>(count));
    return text;
}

Outcome Program::finish() {
    Outcome outcome;
    if (error_ < 0)
        outcome.output = terminalText();
    int status = 0;
    if (::waitpid(process_, &status, 0) != process_)
        fail("waitpid");
    process_ = -1;
    outcome.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    if (error_ >= 0) {
        outcome.output = contentOf(output_);
        outcome.error = contentOf(error_);
    }
    return outcome;
}

Outcome orvane(const Arguments& arguments, const Environment& environment) {
    return Program(arguments, environment).finish();
}

Outcome orvaneOnTerminal(const Arguments& arguments, const Environment& environment) {
    return Program(arguments, environment, Program::Streams::Terminal).finish();
}

std::string shellOutput(const std::string& command) {
    FILE* pipe = ::popen(("ORVANE_TOOL=" ORVANE_TOOL "\n" + command).c_str(), "r");
    std::string output;
    std::array<char, 65536> room{};
    while (const std::size_t count = std::fread(room.data(), 1, room.size(), pipe))
        output.append(room.data(), count);
    ::pclose(pipe);
    return output;
}

Outcome prints(const std::string& output) {
    return {0, output, ""};
}

Outcome fails(int status, const std::string& error, const std::string& output) {
    return {status, output, error};
}

OneBoardLab::OneBoardLab()
    : board(lab.add({"10.83.0.1", "OV0001", {"OV0001:0", "OV0001:1", "OV0001:10"}, "host", 1, false})) {}

Environment OneBoardLab::environment() const {
    return {{"ORVANE_ADDRESS", board.address()}};
}

Outcome OneBoardLab::run(const Arguments& arguments) const {
    return orvane(arguments, environment());
}

Folder::Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "orvane-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr)
        fail("mkdtemp");
    path_ = pattern;
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string Folder::write(const std::string& name, const std::string& text) const {
    std::ofstream(path(name), std::ios::binary) << text;
    return path(name);
}

std::string Folder::content(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool Folder::has(const std::string& name) const {
    return std::filesystem::exists(path(name));
}

} // namespace OrvaneTest

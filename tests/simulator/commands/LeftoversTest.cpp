// What a lab leaves behind when it is interrupted: nothing.
#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "tests/support/EnvironmentVariable.h"
#include "tests/support/simulator/Shell.h"

#include <chrono>
#include <csignal>
#include <poll.h>
#include <pty.h>
#include <regex>
#include <thread>
#include <unistd.h>
#include <vector>

namespace OrvaneSim {
namespace {

// Names of the processes of this machine, other than this one, whose network namespace is `network`.
std::vector<std::string> processesIn(const std::string& network) {
    std::vector<std::string> found;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", ignored)) {
        const auto own = std::filesystem::read_symlink(entry.path() / "ns/net", ignored);
        if (own == network)
            found.push_back(entry.path().filename());
    }
    return found;
}

// A command with a terminal of its own.
class Terminal {
public:
    explicit Terminal(std::vector<std::string> words) {
        int master = -1;
        child_ = ::forkpty(&master, nullptr, nullptr, nullptr);
        if (child_ == 0) {
            ::signal(SIGINT, SIG_DFL); // whatever runs the tests may ignore it
            std::vector<char*> arguments;
            for (std::string& word : words)
                arguments.push_back(word.data());
            arguments.push_back(nullptr);
            ::execv(arguments[0], arguments.data());
            ::_exit(127);
        }
        master_ = Orvane::FileDescriptor(master);
    }

    ~Terminal() {
        if (ended_)
            return;
        ::kill(child_, SIGTERM);
        ::waitpid(child_, nullptr, 0);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // What the command wrote so far, read until `pattern` is found; the first group of it.
    std::string await(const std::string& pattern) {
        std::smatch match;
        while (!std::regex_search(output_, match, std::regex(pattern))) {
            pollfd wanted{master_.get(), POLLIN, 0};
            std::array<char, 4096> room;
            const bool ready = ::poll(&wanted, 1, 20000) == 1;
            const ssize_t count = ready ? ::read(master_.get(), room.data(), room.size()) : -1;
            if (count <= 0) {
                ADD_FAILURE() << "the command never wrote " << pattern << " but:\n" << output_;
                return "";
            }
            output_.append(room.data(), static_cast<std::size_t>(count));
        }
        return match[1];
    }

    void type(const std::string& keys) {
        EXPECT_EQ(::write(master_.get(), keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    pid_t process() const { return child_; }

    // Closes the terminal.
    void hangUp() { master_.reset(); }

    // Waits for the command's end.
    int status() {
        int status = 0;
        EXPECT_EQ(::waitpid(child_, &status, 0), child_);
        ended_ = true;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    pid_t child_ = -1;
    bool ended_ = false;
    Orvane::FileDescriptor master_;
    std::string output_;
};

const char* const kShowAndSleep =
    "sleep 1000 & readlink /proc/self/ns/net; echo control=$ORVANE_LAB_CONTROL.; "
    "echo started; exec sleep 1000";

class InterruptedLab : public testing::Test {
protected:
    // Runs a lab, has `interrupt` end it and looks for what is left.
    template <class Interrupt>
    int statusAfter(Interrupt interrupt) {
        Terminal terminal({ORVANE_LAB, "--boards", "3", "--", "sh", "-c", kShowAndSleep});
        const std::string network = terminal.await("(net:\\[[0-9]+\\])");
        const std::string control = terminal.await("control=(\\S+)\\.");
        terminal.await("(started)");
        EXPECT_GE(processesIn(network).size(), 2U);
        EXPECT_TRUE(std::filesystem::exists(control));
        interrupt(terminal);
        const int status = terminal.status();
        EXPECT_EQ(processesIn(network), std::vector<std::string>());
        EXPECT_FALSE(std::filesystem::exists(control));
        return status;
    }
};

TEST_F(InterruptedLab, LeavesNothingBehindAfterCtrlC) {
    EXPECT_EQ(statusAfter([](Terminal& terminal) { terminal.type("\x03"); }), 128 + SIGINT);
}

TEST_F(InterruptedLab, LeavesNothingBehindAfterTerm) {
    EXPECT_EQ(statusAfter([](Terminal& terminal) { ::kill(terminal.process(), SIGTERM); }), 128 + SIGTERM);
}

TEST_F(InterruptedLab, LeavesNothingBehindWhenItsTerminalGoes) {
    EXPECT_EQ(statusAfter([](Terminal& terminal) { terminal.hangUp(); }), 128 + SIGHUP);
}

TEST(OrvaneLabShell, IsTheUsersShellInTheLab) {
    const OrvaneTest::EnvironmentVariable shell("SHELL", "/bin/sh");
    Terminal terminal({ORVANE_LAB, "--interfaces", "2", "shell"});
    terminal.type("cat /proc/net/dev; echo control=$ORVANE_LAB_CONTROL.\n");
    terminal.await("(lab1):");
    const std::string control = terminal.await("control=(/\\S+)\\.");
    terminal.type("exit 9\n");
    EXPECT_EQ(terminal.status(), 9);
    EXPECT_FALSE(std::filesystem::exists(control));
}

TEST(OrvaneLabShell, GoesWithoutACommandAndTheOtherWayRound) {
    EXPECT_EQ(shell(ORVANE_LAB).status, 125);
    EXPECT_EQ(shell(ORVANE_LAB " shell -- true").status, 125);
}

TEST(OrvaneSimInterrupted, RemovesItsControlSocket) {
    const ScratchFolder folder;
    const std::string control = folder.file("control");
    Terminal terminal({ORVANE_SIM, "--address", "127.0.0.9", "--control", control});
    terminal.await("(ready)");
    EXPECT_TRUE(std::filesystem::exists(control));
    terminal.type("\x03");
    EXPECT_EQ(terminal.status(), 0);
    EXPECT_FALSE(std::filesystem::exists(control));
}

} // namespace
} // namespace OrvaneSim

// orvane-lab and orvane-sim as their users run them.
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

namespace OrvaneSim {
namespace {

/// Output and exit status of a shell command.
struct Outcome {
    std::string output;
    int status;
};

Outcome shell(const std::string& command) {
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    std::string output;
    std::array<char, 4096> room;
    while (const std::size_t count = std::fread(room.data(), 1, room.size(), pipe))
        output.append(room.data(), count);
    const int status = ::pclose(pipe);
    return {output, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
}

TEST(OrvaneLab, runsACommandAndEndsWithItsStatus) {
    EXPECT_EQ(shell(ORVANE_LAB " --boards 0 -- sh -c 'exit 7'").status, 7);
    EXPECT_EQ(shell(ORVANE_LAB " -- sh -c 'kill -TERM $$'").status, 128 + SIGTERM);
}

TEST(OrvaneLab, tellsWhenTheCommandCannotBeRun) {
    const Outcome missing = shell(ORVANE_LAB " -- /no/such/command");
    EXPECT_EQ(missing.status, 127);
    EXPECT_EQ(missing.output, "cannot run /no/such/command: No such file or directory\n");
    EXPECT_EQ(shell(ORVANE_LAB " -- /").status, 126);
}

TEST(OrvaneLab, leavesNoProcessBehind) {
    const Outcome outcome = shell(ORVANE_LAB " -- sh -c 'sleep 1000 >/dev/null 2>&1 & echo $!'");
    EXPECT_EQ(outcome.status, 0);
    const int left = std::atoi(outcome.output.c_str());
    ASSERT_GT(left, 1);
    EXPECT_EQ(::kill(left, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST(OrvaneLab, refusesFlagsThatDoNotGoTogether) {
    const Outcome outcome = shell(ORVANE_LAB " --boards 2 --device X:0 -- true");
    EXPECT_EQ(outcome.status, 125);
    EXPECT_EQ(outcome.output, "orvane-lab: --device is for a single board\n");
    EXPECT_NE(shell(ORVANE_LAB " --boards 2").status, 0);
}

TEST(OrvaneLab, showsTheCommandOneInterfaceForEachAskedFor) {
    const Outcome outcome =
        shell(ORVANE_LAB " --interfaces 3 -- sed -n 's/^ *\\(lab[0-9]\\):.*/\\1/p' /proc/net/dev");
    EXPECT_EQ(outcome.output, "lab0\nlab1\nlab2\n");
}

TEST(OrvaneLab, letsTheCommandResolveTheNamesOfItsHostsFile) {
    const Outcome outcome = shell("printf '10.83.0.1 mylab\\n' > hosts.test; " ORVANE_LAB
                                  " --hosts hosts.test -- getent hosts mylab; rm hosts.test");
    EXPECT_NE(outcome.output.find("10.83.0.1"), std::string::npos) << outcome.output;
}

TEST(OrvaneSim, servesUntilItIsTold) {
    const Outcome outcome =
        shell("timeout -s TERM 10 sh -c '" ORVANE_SIM " --address 127.0.0.9 --serial LAB7 > sim.out & "
              "until grep -q ready sim.out; do :; done; kill -TERM $!; wait $!'; "
              "echo $?; cat sim.out; rm sim.out");
    EXPECT_EQ(outcome.output, "0\nboard LAB7 at 127.0.0.9: host LAB7:0 LAB7:1 LAB7:10\nready\n");
}

TEST(OrvaneSim, tellsWhichBoardCannotBeServed) {
    const Outcome outcome = shell(ORVANE_SIM " --address 192.0.2.9 --serial LAB7");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output.substr(0, 30), "orvane-sim: board LAB7: cannot");
}

} // namespace
} // namespace OrvaneSim

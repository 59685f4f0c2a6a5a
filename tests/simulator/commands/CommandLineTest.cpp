// orvane-lab and orvane-sim as their users run them.
#include "tests/support/simulator/Shell.h"

#include <cerrno>
#include <csignal>

namespace OrvaneSim {
namespace {

TEST(OrvaneLab, RunsACommandAndEndsWithItsStatus) {
    EXPECT_EQ(shell(ORVANE_LAB " --boards 0 -- sh -c 'exit 7'").status, 7);
    EXPECT_EQ(shell(ORVANE_LAB " -- sh -c 'kill -TERM $$'").status, 128 + SIGTERM);
}

TEST(OrvaneLab, TellsWhenTheCommandCannotBeRun) {
    const Outcome missing = shell(ORVANE_LAB " -- /no/such/command");
    EXPECT_EQ(missing.status, 127);
    EXPECT_EQ(missing.output, "cannot run /no/such/command: No such file or directory\n");
    EXPECT_EQ(shell(ORVANE_LAB " -- /").status, 126);
}

TEST(OrvaneLab, LeavesNoProcessBehind) {
    const Outcome outcome = shell(ORVANE_LAB " -- sh -c 'sleep 1000 >/dev/null 2>&1 & echo $!'");
    EXPECT_EQ(outcome.status, 0);
    const int left = std::atoi(outcome.output.c_str());
    ASSERT_GT(left, 1);
    EXPECT_EQ(::kill(left, 0), -1);
    EXPECT_EQ(errno, ESRCH);
}

TEST(OrvaneLab, RefusesFlagsThatDoNotGoTogether) {
    const Outcome outcome = shell(ORVANE_LAB " --boards 2 --device X:0 -- true");
    EXPECT_EQ(outcome.status, 125);
    EXPECT_EQ(outcome.output, "orvane-lab: --device is for a single board\n");
    EXPECT_NE(shell(ORVANE_LAB " --boards 2").status, 0);
}

TEST(OrvaneLab, ShowsTheCommandOneInterfaceForEachAskedFor) {
    const Outcome outcome =
        shell(ORVANE_LAB " --interfaces 3 -- sed -n 's/^ *\\(lab[0-9]\\):.*/\\1/p' /proc/net/dev");
    EXPECT_EQ(outcome.output, "lab0\nlab1\nlab2\n");
}

TEST(OrvaneLab, LetsTheCommandResolveTheNamesOfItsHostsFile) {
    const Outcome outcome = shell("printf '10.83.0.1 mylab\\n' > hosts.test; " ORVANE_LAB
                                  " --hosts hosts.test -- getent hosts mylab; rm hosts.test");
    EXPECT_NE(outcome.output.find("10.83.0.1"), std::string::npos) << outcome.output;
}

TEST(OrvaneLab, HasAManualPage) {
    const std::string page = shell(ORVANE_LAB " --generate man").output;
    EXPECT_EQ(page.substr(0, page.find(" 1 ")), ".TH ORVANE\\-LAB");
    EXPECT_NE(page.find(".TP\n\\fB\\-\\-boards \\fIN\\fR\\fR\nNumber of boards (1)\n"), std::string::npos)
        << page;
    EXPECT_NE(page.find("[\\fIOPTIONS\\fR] \\-\\- \\fICOMMAND\\fR"), std::string::npos) << page;
    EXPECT_EQ(shell(ORVANE_LAB " --help").output.find("--generate"), std::string::npos);
}

TEST(OrvaneSim, HasAManualPage) {
    const std::string page = shell(ORVANE_SIM " --generate man").output;
    EXPECT_EQ(page.substr(0, page.find(" 1 ")), ".TH ORVANE\\-SIM");
    EXPECT_NE(page.find(".SS ctl\n"), std::string::npos) << page;
    EXPECT_NE(page.find("\n  interrupt device=0 phy=0"), std::string::npos) << page;
}

// What bash would offer in place of the last of these words.
std::string completions(const std::string& program, const std::string& function, const std::string& words) {
    const ScratchFolder folder;
    const std::string script = folder.write("script", shell(program + " --generate bash").output);
    folder.write("pathfinder", "#!/bin/sh\n");
    const std::string go = folder.write(
        "go", "source " + script + "\nPATH=" + folder.file("") + "\nCOMP_WORDS=(" + words +
                  ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n" + function + "\necho \"${COMPREPLY[@]}\"\n");
    return shell("chmod +x " + folder.file("pathfinder") + "; bash " + go).output;
}

TEST(OrvaneLabCompletion, OffersOptionsAndBehindDashesTheCommandsOfTheMachine) {
    EXPECT_EQ(completions(ORVANE_LAB, "_orvane_lab", "orvane-lab --boards 2 --in"), "--interfaces\n");
    EXPECT_EQ(completions(ORVANE_LAB, "_orvane_lab", "orvane-lab sh"), "shell\n");
    EXPECT_EQ(completions(ORVANE_LAB, "_orvane_lab", "orvane-lab -- pathf"), "pathfinder\n");
    EXPECT_EQ(completions(ORVANE_LAB, "_orvane_lab", "orvane-lab -- pathfinder --in"), "\n");
}

TEST(OrvaneSimCompletion, OffersOptionsAndWhatMayBeSaidToABoard) {
    EXPECT_EQ(completions(ORVANE_SIM, "_orvane_sim", "orvane-sim --sn"), "--snapshot\n");
    EXPECT_EQ(completions(ORVANE_SIM, "_orvane_sim", "orvane-sim ctl OV0001 inter"), "interrupt\n");
    EXPECT_EQ(completions(ORVANE_SIM, "_orvane_sim", "orvane-sim ctl OV0001 lose-r"),
              "lose-request lose-reply\n");
}

TEST(OrvaneSim, ServesUntilItIsTold) {
    const Outcome outcome =
        shell("timeout -s TERM 10 sh -c '" ORVANE_SIM " --address 127.0.0.9 --serial LAB7 > sim.out & "
              "until grep -sq ready sim.out; do :; done; kill -TERM $!; wait $!'; "
              "echo $?; cat sim.out; rm sim.out");
    EXPECT_EQ(
        outcome.output,
        "0\nboard LAB7 at 127.0.0.9: host LAB7:0 LAB7:1 LAB7:10\n"
        "reach each by its address, for no multicast gets there: orvane info LAB7:0 --address 127.0.0.9\n"
        "ready\n");
}

TEST(OrvaneSim, TellsWhichBoardCannotBeServed) {
    const Outcome outcome = shell(ORVANE_SIM " --address 192.0.2.9 --serial LAB7");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output.substr(0, 30), "orvane-sim: board LAB7: cannot");
}

TEST(OrvaneSim, GivesAShellOnlyAtLoopbackAddressesAndInPrivateNetworks) {
    const Outcome outcome = shell(ORVANE_SIM " --address 192.0.2.9 --serial LAB7 --allow-shell");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(
        outcome.output.find("board LAB7: a board with a shell is only served at a loopback address or in a "
                            "private network, not at 192.0.2.9"),
        std::string::npos)
        << outcome.output;
}

TEST(OrvaneLab, WarnsOfBoardsWithAShell) {
    const std::string warning = "run remote commands in a shell of this machine";
    EXPECT_NE(shell(ORVANE_LAB " --allow-shell -- true").output.find(warning), std::string::npos);
    EXPECT_EQ(shell(ORVANE_LAB " -- true").output, "");
}

TEST(OrvaneLab, RefusesAFileThatIsNestedTooDeepToBeWalked) {
    const ScratchFolder folder;
    const std::string file = folder.write("deep.json", std::string(100000, '[') + std::string(100000, ']'));
    const Outcome outcome = shell(ORVANE_LAB " --lab " + file + " -- true");
    EXPECT_EQ(outcome.status, 125);
    EXPECT_EQ(outcome.output, "orvane-lab: " + file + ": nested deeper than 64 levels\n");
}

// Runs a script in a lab with two boards, with orvane-sim on its path.
Outcome inLab(const std::string& script) {
    const ScratchFolder folder;
    folder.write("script", script);
    return shell("PATH=$(dirname " ORVANE_SIM "):$PATH " ORVANE_LAB " --boards 2 -- sh " +
                 folder.file("script"));
}

TEST(OrvaneSimCtl, FindsTheLabThatItRunsIn) {
    EXPECT_EQ(inLab("orvane-sim ctl OV0002 set 0x10010 0xBEEF && orvane-sim ctl 10.83.0.2 get register=65552")
                  .output,
              "0xBEEF\n");
}

TEST(OrvaneSimCtl, PrintsNoControlCharacters) {
    const Outcome outcome =
        shell("PATH=$(dirname " ORVANE_SIM "):$PATH\nlab() { " ORVANE_LAB
              " --first-word \"$(printf 'h\\033[2J\\177\\302\\233z\\303\\251')\" -- \"$@\"; }\n"
              "lab orvane-sim ctl all list\nlab orvane-sim ctl all list --json\n"
              "lab orvane-sim ctl all \"$(printf 'clear\\033c')\"");
    EXPECT_NE(outcome.output.find(R"(h\x1b[2J\x7f\xc2\x9bz)"
                                  "\u00e9 OV0001:0"),
              std::string::npos)
        << outcome.output;
    EXPECT_NE(outcome.output.find(R"("h\u001b[2J\u007f\u009bz\u00e9 OV0001:0)"), std::string::npos)
        << outcome.output;
    EXPECT_NE(outcome.output.find(R"(there is no action "clear\x1bc")"), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find('\x1b'), std::string::npos);
}

TEST(OrvaneSimCtl, PrintsATable) {
    EXPECT_EQ(inLab("orvane-sim ctl all list").output,
              "board   address    name                              sessions  faults\n"
              "OV0001  10.83.0.1  host OV0001:0 OV0001:1 OV0001:10  0         0\n"
              "OV0002  10.83.0.2  host OV0002:0 OV0002:1 OV0002:10  0         0\n");
}

TEST(OrvaneSimCtl, TellsARefusalFromWrongWordsByItsStatus) {
    const Outcome done = inLab("orvane-sim ctl all delay 5 3");
    EXPECT_EQ(done.status, 0);
    EXPECT_EQ(done.output, "");
    const Outcome refused = inLab("orvane-sim ctl all explode");
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.output, "orvane-sim: action: there is no action \"explode\"\n");
    const Outcome wrong = inLab("orvane-sim ctl all delay 5 3 1");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.output, "orvane-sim: \"1\" has no place in delay\n");
    EXPECT_EQ(inLab("orvane-sim ctl all").status, 2);
    EXPECT_EQ(inLab("orvane-sim ctl all list --control /no/such/socket").output,
              "orvane-sim: no lab answers at /no/such/socket: No such file or directory\n");
}

TEST(OrvaneSimCtl, ExplainsItself) {
    const Outcome help = shell(ORVANE_SIM " ctl --help");
    EXPECT_EQ(help.status, 0);
    for (const char* part : {"lose-reply", "restart forgetSessions=false", "Examples:", "Exit status:"})
        EXPECT_NE(help.output.find(part), std::string::npos) << part;
}

} // namespace
} // namespace OrvaneSim

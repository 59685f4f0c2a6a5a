// A process for each scenario, and its figures when it ends.
#include "tests/faults/scenarios/SideBySide.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <map>
#include <memory>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace OrvaneFaults {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

struct Running {
    const Scenario* scenario;
    File figures; // what the process says
};

double msOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

std::string textOf(std::FILE* file) {
    std::string text;
    char part[4096];
    std::rewind(file);
    for (std::size_t length = 0; (length = std::fread(part, 1, sizeof part, file)) > 0;)
        text.append(part, length);
    return text;
}

class Processes {
public:
    explicit Processes(const std::function<int(const Scenario&)>& run) : run_(run) {}

    void start(const Scenario& scenario) {
        File figures(std::tmpfile(), std::fclose);
        const pid_t pid = figures ? fork() : -1;
        if (pid < 0)
            throw std::runtime_error("no process for a scenario");
        if (pid == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL, 0UL, 0UL, 0UL);
            figuresTo(figures.get());
            std::exit(run_(scenario)); // NOLINT(concurrency-mt-unsafe): the others have ended
        }
        running_.emplace(pid, Running{&scenario, std::move(figures)});
    }

    bool any() const { return !running_.empty(); }

    // Waits for the end of one, and shows it; whether its status was 0 comes with the scenario.
    std::pair<const Scenario*, bool> next() {
        int status = 0;
        rusage used{};
        const auto ended = running_.find(wait4(-1, &status, 0, &used));
        if (ended == running_.end())
            throw std::runtime_error("a process that is no scenario's ended");
        const Scenario* const scenario = ended->second.scenario;
        say(textOf(ended->second.figures.get()) + scenario->name + " used the processors for " +
            seconds(msOf(used.ru_utime)) + " s, the system for " + seconds(msOf(used.ru_stime)) + " s");
        if (WIFSIGNALED(status))
            say(std::string("BROKEN: ") + scenario->name + " ended by signal " +
                std::to_string(WTERMSIG(status)));
        running_.erase(ended);
        return {scenario, WIFEXITED(status) && WEXITSTATUS(status) == 0};
    }

private:
    const std::function<int(const Scenario&)>& run_;
    std::map<pid_t, Running> running_;
};

} // namespace

int runSideBySide(const std::vector<const Scenario*>& chosen,
                  const std::function<int(const Scenario&)>& run) {
    Processes processes(run);
    std::deque<const Scenario*> computing;
    for (const Scenario* scenario : chosen)
        if (scenario->computes)
            computing.push_back(scenario);
        else
            processes.start(*scenario);
    const auto startComputing = [&] {
        if (computing.empty())
            return;
        processes.start(*computing.front());
        computing.pop_front();
    };
    startComputing();
    int broken = 0;
    while (processes.any()) {
        const auto [scenario, held] = processes.next();
        broken += held ? 0 : 1;
        if (scenario->computes)
            startComputing();
    }
    return broken;
}

} // namespace OrvaneFaults

// orvane run, serve, metrics: the Python package carries out these verbs itself.
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/verbs/Verbs.h"

#include <cerrno>
#include <cstdlib>
#include <fmt/format.h>
#include <unistd.h>

namespace OrvaneTool {
namespace {

// A package that is missing is told apart from one that cannot be imported.
std::string programOf(const std::string& verb) {
    return fmt::format(R"(import sys
try:
    from orvane.{0}.__main__ import main
except ModuleNotFoundError as problem:
    if problem.name not in ('orvane', 'orvane.{0}'):
        raise
    sys.exit('orvane: {0}: the Python package orvane is missing for ' + sys.executable + ' (Debian: python3-orvane)')
sys.exit(main())
)",
                       verb);
}

const char* interpreter() {
    const char* const chosen =
        std::getenv("ORVANE_PYTHON"); // NOLINT(concurrency-mt-unsafe): before any thread
    return chosen != nullptr && *chosen != '\0' ? chosen : "python3";
}

// Returns only by throwing: the program becomes the interpreter.
int handOver(const std::string& verb, std::vector<std::string>& words) {
    std::string program = interpreter();
    std::string option = "-c";
    std::string code = programOf(verb);
    std::vector<char*> arguments{program.data(), option.data(), code.data()};
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    ::execvp(program.c_str(), arguments.data());
    throw Failure(fmt::format("{}: {}: {}. It needs Python and its package orvane (Debian: python3-orvane)",
                              verb, program, errorText(errno)));
}

void addInPython(CLI::App& app, Context& context, const char* name, const char* summary,
                 const std::string& examples) {
    const std::string text = fmt::format(
        "{0} 'orvane {1} --help' is answered by the Python package orvane, as is the rest of the verb.\n",
        examples, name);
    CLI::App& verb = addVerb(app, {name, summary, text.c_str()});
    verb.set_help_flag();
    verb.prefix_command();
    verb.callback([&context, &verb, name] {
        context.action = [name, words = verb.remaining()]() mutable { return handOver(name, words); };
    });
}

} // namespace

void addRun(CLI::App& app, Context& context) {
    addInPython(app, context, "run", "Measure sweeps of a Python program, show and compare data sets",
                "  orvane run sweep.py --plan\n"
                "  orvane run sweep.py --out drive-sweep.orvrun --resume\n"
                "  orvane run show drive-sweep.orvrun\n"
                "  orvane run diff monday.orvrun today.orvrun --tolerance eye=2\n");
}

void addServe(CLI::App& app, Context& context) {
    addInPython(app, context, "serve", "Show the rack in a browser",
                "  orvane serve\n"
                "  orvane serve 'OV00*' --write\n"
                "  orvane serve --log session.csv --run drive-sweep.orvrun\n");
}

void addMetrics(CLI::App& app, Context& context) {
    addInPython(app, context, "metrics", "Count what boards answer, for Prometheus",
                "  orvane metrics\n"
                "  orvane metrics 'OV00*:0' --textfile orvane.prom --interval 15\n");
}

} // namespace OrvaneTool

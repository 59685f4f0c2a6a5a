// orvane run: sweeps of the Python package, which carries out the verb itself.
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/verbs/Verbs.h"

#include <cerrno>
#include <cstdlib>
#include <fmt/format.h>
#include <unistd.h>

namespace OrvaneTool {
namespace {

// A package that is missing is told apart from one that cannot be imported.
constexpr const char* kProgram = R"(import sys
try:
    from orvane.run.__main__ import main
except ModuleNotFoundError as problem:
    if problem.name not in ('orvane', 'orvane.run'):
        raise
    sys.exit('orvane: run: the Python package orvane is missing for ' + sys.executable + ' (Debian: python3-orvane)')
sys.exit(main())
)";

const char* interpreter() {
    const char* const chosen =
        std::getenv("ORVANE_PYTHON"); // NOLINT(concurrency-mt-unsafe): before any thread
    return chosen != nullptr && *chosen != '\0' ? chosen : "python3";
}

// Returns only by throwing: the program becomes the interpreter.
int run(std::vector<std::string>& words) {
    std::string program = interpreter();
    std::string option = "-c";
    std::string code = kProgram;
    std::vector<char*> arguments{program.data(), option.data(), code.data()};
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    ::execvp(program.c_str(), arguments.data());
    throw Failure(fmt::format("run: {}: {}. It needs Python and its package orvane (Debian: python3-orvane)",
                              program, errorText(errno)));
}

} // namespace

void addRun(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(app, {"run", "Measure sweeps of a Python program, show and compare data sets",
                                   "  orvane run sweep.py --plan\n"
                                   "  orvane run sweep.py --out drive-sweep.orvrun --resume\n"
                                   "  orvane run show drive-sweep.orvrun\n"
                                   "  orvane run diff monday.orvrun today.orvrun --tolerance eye=2\n"
                                   " 'orvane run --help' is answered by the Python package orvane, as is the "
                                   "rest of the verb.\n"});
    verb.set_help_flag();
    verb.prefix_command();
    verb.callback(
        [&context, &verb] { context.action = [words = verb.remaining()]() mutable { return run(words); }; });
}

} // namespace OrvaneTool

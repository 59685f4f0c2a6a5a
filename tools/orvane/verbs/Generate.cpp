// orvane generate: manual page and shell completion, made from the definitions that --help shows.
#include "tools/commandline/Documents.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/verbs/Verbs.h"

namespace OrvaneTool {
namespace {

struct Options {
    std::string what;
    const CLI::App* app = nullptr;
};

int run(Context& context, const Options& options) {
    context.console.out.write(document({*options.app, ORVANE_VERSION}, options.what));
    return kSuccess;
}

} // namespace

void addGenerate(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(app, {"generate", "Print the manual page or the bash completion", ""});
    verb.group(""); // not in help
    auto options = std::make_shared<Options>();
    options->app = &app;
    verb.add_option("WHAT", options->what, "man or bash")->required()->check(CLI::IsMember({"man", "bash"}));
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

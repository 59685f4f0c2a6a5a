// orvane complete: what the shell offers, without asking any board.
#include "tools/orvane/board/DeviceCache.h"
#include "tools/orvane/cli/Verb.h"
#include "tools/orvane/verbs/Verbs.h"

namespace OrvaneTool {
namespace {

struct Options {
    std::string what;
};

int run(Context& context, const Options&) {
    for (const auto& [alias, device] : context.settings().aliases)
        context.console.out.print("{}\n", alias);
    for (const std::string& name : rememberedDevices())
        context.console.out.print("{}\n", name);
    return kSuccess;
}

} // namespace

void addComplete(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(app, {"complete", "Print the devices that were found lately", ""});
    verb.group(""); // for the shell
    auto options = std::make_shared<Options>();
    verb.add_option("WHAT", options->what, "devices")->required()->check(CLI::IsMember({"devices"}));
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

// Verbs and their common options as the parser knows them.
#include "tools/orvane/cli/Verb.h"

namespace OrvaneTool {

CLI::App& addVerb(CLI::App& parent, const VerbText& text) {
    CLI::App& verb = *parent.add_subcommand(text.name, text.summary);
    verb.group("Verbs");
    if (*text.examples)
        verb.footer(std::string("Examples:\n") + text.examples);
    return verb;
}

void addBoardOptions(CLI::App& verb, Context& context) {
    verb.add_option("--address", context.addresses,
                    "Board at this IPv4 address, asked instead of a multicast; repeatable")
        ->type_name("IP")
        ->expected(1)
        ->delimiter(',')
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->check(CLI::Validator(CLI::ValidIPV4).description(""))
        ->envname("ORVANE_ADDRESS");
    verb.add_flag("--verbose", context.verbose, "Show what the library writes, on standard error");
}

void addFormatOptions(CLI::App& verb, Context& context) {
    CLI::Option* json = verb.add_flag("--json", context.json, "Print JSON");
    verb.add_flag("--csv", context.csv, "Print comma-separated values")->excludes(json);
}

void addDevice(CLI::App& verb, std::string& device) {
    verb.add_option("DEVICE", device, "Device: board serial number, colon, port")->required()->type_name("");
}

} // namespace OrvaneTool

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
    verb.add_option_function<double>(
            "--time",
            [&context](double seconds) {
                context.searchTime = std::chrono::duration_cast<std::chrono::nanoseconds>(
                    std::chrono::duration<double>(seconds));
            },
            "How long boards may take to answer a search (1; for those named in full 5)")
        ->type_name("S")
        ->check(CLI::Range(0.01, 86400.0).description(""));
    addLogOption(verb, context);
    verb.add_flag("--verbose", context.verbose, "Show what the library writes, on standard error");
}

void addLogOption(CLI::App& verb, Context& context) {
    verb.add_option("--log", context.logFile, "Add every access to this transaction log")
        ->type_name("FILE")
        ->envname("ORVANE_LOG");
}

void addFormatOptions(CLI::App& verb, Context& context) {
    CLI::Option* json = verb.add_flag("--json", context.json, "Print JSON");
    verb.add_flag("--csv", context.csv, "Print comma-separated values")->excludes(json);
}

void addMapOptions(CLI::App& verb, Context& context) {
    verb.add_option("--map", context.mapFiles, "Register map, asked for names before IEEE 802.3; repeatable")
        ->type_name("FILE")
        ->expected(1)
        ->delimiter(':')
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->envname("ORVANE_MAPS");
    verb.add_option("--phy-identifier", context.identifier,
                    "PHY that the maps are loaded for: registers 2 and 3 in one number")
        ->type_name("ID");
}

void addFieldOptions(CLI::App& verb, Context& context) {
    addMapOptions(verb, context);
    CLI::Option* fields = verb.add_flag("--fields", context.fields,
                                        "Show fields (the default on a terminal, with a map or a name)");
    verb.add_flag("--no-fields", context.noFields, "Show no fields")->excludes(fields);
}

void addSideEffects(CLI::App& verb, Context& context) {
    verb.add_flag("--side-effects", context.sideEffects,
                  "Read what a read changes, too, where a pattern, a block or a range means it");
}

void addDevice(CLI::App& verb, std::string& device) {
    verb.add_option("DEVICE", device, "Device: board serial number, colon, port")->required()->type_name("");
}

} // namespace OrvaneTool

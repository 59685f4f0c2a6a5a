// The register options as the parser knows them.
#include "tools/orvane/cli/RegisterOptions.h"

namespace OrvaneTool {

void addJobs(CLI::App& verb, unsigned& jobs) {
    verb.add_option("-j,--jobs", jobs, "Boards that are worked on at a time (64)")
        ->type_name("N")
        ->check(CLI::Range(1U, 1024U).description(""));
}

void addDryRun(CLI::App& verb, bool& dryRun) {
    verb.add_flag("--dry-run", dryRun, "Show what would be sent, by names and step by step; send nothing");
}

void addSpaceOptions(CLI::App& verb, RegisterOptions& options) {
    CLI::Option* c22 = verb.add_flag("--c22", options.c22, "Clause 22: addresses are 0 to 31");
    verb.add_flag("--ext32", options.ext32, "32-bit extension: 32-bit addresses and values")->excludes(c22);
    verb.add_option("--step", options.step, "Distance of a range's registers (1; with --ext32 4)")
        ->type_name("N")
        ->check(CLI::PositiveNumber.description(""));
}

void addRegisterOptions(CLI::App& verb, Context& context, RegisterOptions& options) {
    verb.add_option(
            "DEVICE", options.device,
            "Devices: BOARD:PORT, lists with commas, ranges (OV0001-OV0020:0), patterns ('OV*:0'), @FILE")
        ->required()
        ->type_name("");
    verb.add_option("PHY", options.phy,
                    "PHY addresses: 0 to 31, on an SMBus port I2C addresses; lists with commas, ranges "
                    "(0-19); '*': those that answer")
        ->required()
        ->type_name("");
    addSpaceOptions(verb, options);
    addJobs(verb, options.jobs);
    CLI::Option* routed = verb.add_flag(
        "--routed", options.routed, "By the library's path for the register (firmware, bridges), one by one");
    verb.add_flag("--direct", options.direct, "Straight to the register, several in one block (the default)")
        ->excludes(routed);
    for (const char* space : {"--c22", "--ext32"})
        routed->excludes(verb.get_option(space));
    addFieldOptions(verb, context);
    addBoardOptions(verb, context);
}

} // namespace OrvaneTool

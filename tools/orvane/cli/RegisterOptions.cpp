// The register options as the parser knows them.
#include "tools/orvane/cli/RegisterOptions.h"

namespace OrvaneTool {

void addPhy(CLI::App& verb, unsigned& phy) {
    verb.add_option("PHY", phy, "PHY address: 0 to 31, on an SMBus port its I2C address")
        ->required()
        ->type_name("")
        ->check(CLI::Range(0U, 127U).description(""));
}

void addSpaceOptions(CLI::App& verb, RegisterOptions& options) {
    CLI::Option* c22 = verb.add_flag("--c22", options.c22, "Clause 22: addresses are 0 to 31");
    verb.add_flag("--ext32", options.ext32, "32-bit extension: 32-bit addresses and values")->excludes(c22);
    verb.add_option("--step", options.step, "Distance of a range's registers (1; with --ext32 4)")
        ->type_name("N")
        ->check(CLI::PositiveNumber.description(""));
}

void addRegisterOptions(CLI::App& verb, Context& context, RegisterOptions& options) {
    addDevice(verb, options.device);
    addPhy(verb, options.phy);
    addSpaceOptions(verb, options);
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

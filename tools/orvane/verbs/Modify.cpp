// orvane modify: some bits of a register.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options : RegisterOptions {
    std::string address;
    std::string value;
    std::string mask;
};

int run(Context& context, const Options& options) {
    const Space space = options.space();
    const auto value = numberAs<std::uint32_t>(options.value, largestValue(space), "the value");
    const auto mask = numberAs<std::uint32_t>(options.mask, largestValue(space), "the mask");
    if ((value & ~mask) != 0)
        throw UsageError(
            fmt::format("the value {} has bits that the mask {} leaves out", options.value, options.mask));
    const std::vector<Register> list = options.registers({options.address});
    Device device(context, options.device);
    Registers registers(device, options.phy, options.way());
    Stream& out = context.console.out;
    Table table({{"address", "ADDRESS"},
                 {"before", "BEFORE"},
                 {"written", "WRITTEN"},
                 {"read", "READ BACK"},
                 {"", "BITS"}});
    std::string differing;
    for (const Register& reg : list) {
        const std::uint32_t before = registers.read({reg}).front();
        const std::uint32_t wanted = (before & ~mask) | value;
        const std::uint32_t after = registers.run({{reg, wanted}, {reg, std::nullopt}}).front();
        if (after != wanted)
            differing += fmt::format(" {} ({})", reg.text(), hexText(after ^ wanted, space));
        table.add({reg.text(), hexCell(out, before, space), hexCell(out, wanted, space, wanted ^ before),
                   hexCell(out, after, space, after ^ before), bitsCell(out, after, space, after ^ before)});
    }
    table.print(out, context.format());
    if (!differing.empty())
        throw Failure(fmt::format("{}: modify PHY {}: the readback differs from what was written:{}",
                                  device.name(), options.phy, differing));
    return kSuccess;
}

} // namespace

void addModify(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"modify", "Change some bits of registers: read, write, read back",
                      "  orvane modify OV0001:0 3 1.0x0000 0x8000 0x8000   set bit 15\n"
                      "  orvane modify OV0001:0 3 30.0xC010 0x0040 0x00F0  bits 4 to 7 become 4\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("ADDRESS", options->address, "The register, or a range")->required()->type_name("");
    verb.add_option("VALUE", options->value, "The bits that are to be set")->required()->type_name("");
    verb.add_option("MASK", options->mask, "The bits that may change")->required()->type_name("");
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

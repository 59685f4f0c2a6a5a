// orvane modify: some bits of a register.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/names/FieldChange.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/NamedPhy.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options : RegisterOptions {
    std::string address;
    std::string value;
    std::string mask;
};

// What a register is to hold, of what it holds.
std::uint32_t wanted(const Asked& asked, const Options& options, std::uint32_t before) {
    if (asked.field != nullptr) {
        if (!options.mask.empty())
            throw UsageError(fmt::format("{} is a field: it has no mask", options.address));
        return changedBy(asked, before, valueFor(asked, options.value));
    }
    if (options.mask.empty())
        throw UsageError("MASK is required, but for a field");
    const auto value = numberAs<std::uint32_t>(options.value, largestValue(asked.reg.space), "the value");
    const auto mask = numberAs<std::uint32_t>(options.mask, largestValue(asked.reg.space), "the mask");
    if ((value & ~mask) != 0)
        throw UsageError(
            fmt::format("the value {} has bits that the mask {} leaves out", options.value, options.mask));
    return (before & ~mask) | value;
}

int run(Context& context, const Options& options) {
    NamedPhy phy(context, options);
    const std::vector<Asked> list = phy.parse(options.address);
    for (const Asked& each : list)
        wanted(each, options, 0); // refuses what is wrong before anything is sent
    Stream& out = context.console.out;
    Table table({{"address", "ADDRESS"},
                 {"before", "BEFORE"},
                 {"written", "WRITTEN"},
                 {"read", "READ BACK"},
                 {"", "BITS"}});
    FieldTable decoded(out, context.format(), true);
    std::string differing;
    for (const Asked& each : list) {
        const Register& reg = each.reg;
        const Space space = reg.space;
        const std::uint32_t before = phy.read({each}).front();
        const std::uint32_t written = wanted(each, options, before);
        const std::uint32_t after = phy.run({{reg, written}, {reg, std::nullopt}}).front();
        if (after != written)
            differing += fmt::format(" {} ({})", reg.text(), hexText(after ^ written, space));
        table.add({reg.text(), hexCell(out, before, space), hexCell(out, written, space, written ^ before),
                   hexCell(out, after, space, after ^ before), bitsCell(out, after, space, after ^ before)});
        Asked whole = each;
        whole.field = nullptr;
        decoded.add(whole, after, before);
    }
    showsFields(context, phy.maps(), list) ? decoded.print(out) : table.print(out, context.format());
    if (!differing.empty())
        throw Failure(fmt::format("{}: modify PHY {}: the readback differs from what was written:{}",
                                  phy.device().name(), options.phy, differing));
    return kSuccess;
}

} // namespace

void addModify(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"modify", "Change some bits of registers: read, write, read back",
                      "  orvane modify OV0001:0 3 1.0x0000 0x8000 0x8000   set bit 15\n"
                      "  orvane modify OV0001:0 3 30.0xC010 0x0040 0x00F0  bits 4 to 7 become 4\n"
                      "  orvane modify OV0001:0 3 CHIP.CONTROL.SPEED 2 --map chip.json\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("ADDRESS", options->address, "The register, a range, a name or a field")
        ->required()
        ->type_name("");
    verb.add_option("VALUE", options->value, "The bits that are to be set; of a field its value or choice")
        ->required()
        ->type_name("");
    verb.add_option("MASK", options->mask, "The bits that may change; not for a field")->type_name("");
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

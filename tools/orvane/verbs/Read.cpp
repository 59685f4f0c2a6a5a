// orvane read: register values.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

constexpr std::size_t kMostRows = 16; // more values are shown as a grid

struct Options : RegisterOptions {
    std::vector<std::string> addresses;
    bool grid = false;
};

// Eight neighbours in a line, behind the address of the first.
void printGrid(Stream& out, const std::vector<Register>& list, const std::vector<std::uint32_t>& values,
               std::uint32_t distance) {
    constexpr std::size_t kInLine = 8;
    std::size_t inLine = 0;
    for (std::size_t i = 0; i < list.size(); ++i, ++inLine) {
        const bool follows =
            i > 0 && list[i].mmd == list[i - 1].mmd && list[i].address == list[i - 1].address + distance;
        if (!follows || inLine == kInLine) {
            out.write(i > 0 ? "\n" : "");
            out.print("{}:", out.painted(Colour::Dim, list[i].text()));
            inLine = 0;
        }
        out.print(" {:0{}X}", values[i], valueDigits(list[i].space));
    }
    out.write("\n");
}

void printRows(Context& context, const Options& options, const std::vector<Register>& list,
               const std::vector<std::uint32_t>& values) {
    Stream& out = context.console.out;
    Table table({{"device", ""},
                 {"phy", ""},
                 {"space", ""},
                 {"address", "ADDRESS"},
                 {"value", "VALUE"},
                 {"", "BITS"},
                 {"", "DECIMAL", true}});
    for (std::size_t i = 0; i < list.size(); ++i)
        table.add({options.device,
                   {std::to_string(options.phy), options.phy},
                   nameOf(options.space()),
                   list[i].text(),
                   hexCell(out, values[i], options.space()),
                   bitsCell(out, values[i], options.space()),
                   {std::to_string(values[i]), values[i]}});
    table.print(out, context.format());
}

int run(Context& context, const Options& options) {
    const std::vector<Register> list = options.registers(options.addresses);
    Device device(context, options.device);
    const std::vector<std::uint32_t> values = Registers(device, options.phy, options.way()).read(list);
    Stream& out = context.console.out;
    const bool text = context.format() == Format::Text;
    if (text && (options.grid || list.size() > kMostRows))
        printGrid(out, list, values, options.distance());
    else if (text && list.size() == 1)
        out.print("{}\n", hexText(values[0], options.space()));
    else
        printRows(context, options, list, values);
    return kSuccess;
}

} // namespace

void addRead(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"read", "Read registers",
                      "  orvane read OV0001:0 3 1.0x0002            PHY 3, MMD 1, register 2\n"
                      "  orvane read OV0001:0 3 1.2 1.3 31.0x8037   three registers in one round trip\n"
                      "  orvane read OV0001:0 3 3.0x20+16           16 registers from 0x20 on\n"
                      "  orvane read OV0001:0 3 3.0x20-0x2F --json\n"
                      "  orvane read OV0001:0 3 --c22 0+32\n"
                      "  orvane read OV0001:0 3 --ext32 0x80004000+4\n"
                      "  orvane read OV0001:0 3 --routed 11.0x1004  through the PHY's firmware\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("ADDRESS", options->addresses,
                    "MMD.REGISTER (with --c22 and --ext32 a number), FIRST+COUNT or FIRST-LAST")
        ->required()
        ->type_name("");
    verb.add_flag("--grid", options->grid, "Eight values in a line (the default for more than 16)");
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

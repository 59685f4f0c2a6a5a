// orvane read: register values.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/NamedPhy.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

constexpr std::size_t kMostRows = 16; // more values are shown as a grid

struct Options : RegisterOptions {
    std::vector<std::string> addresses;
    bool grid = false;
    bool twice = false;
};

// Eight neighbours in a line, behind the address of the first.
void printGrid(Stream& out, const std::vector<Asked>& list, const std::vector<std::uint32_t>& values,
               std::uint32_t distance) {
    constexpr std::size_t kInLine = 8;
    std::size_t inLine = 0;
    for (std::size_t i = 0; i < list.size(); ++i, ++inLine) {
        const Register& reg = list[i].reg;
        Register next = i > 0 ? list[i - 1].reg : reg;
        next.address += distance;
        if (i == 0 || !(reg == next) || inLine == kInLine) {
            out.write(i > 0 ? "\n" : "");
            out.print("{}:", out.painted(Colour::Dim, reg.text()));
            inLine = 0;
        }
        out.print(" {:0{}X}", values[i], valueDigits(reg.space));
    }
    out.write("\n");
}

void printRows(Context& context, const Options& options, const std::vector<Asked>& list,
               const std::vector<std::uint32_t>& values) {
    Stream& out = context.console.out;
    const bool named = isNamed(list);
    Table table({{"device", ""},
                 {"phy", ""},
                 {"space", ""},
                 {"address", "ADDRESS"},
                 {named ? "register" : "", named ? "REGISTER" : ""},
                 {"value", "VALUE"},
                 {"", "BITS"},
                 {"", "DECIMAL", true}});
    for (std::size_t i = 0; i < list.size(); ++i)
        table.add({options.device,
                   {std::to_string(options.phy), options.phy},
                   nameOf(list[i].reg.space),
                   list[i].reg.text(),
                   list[i].mapped != nullptr ? list[i].mapped->name() : "",
                   hexCell(out, values[i], list[i].reg.space),
                   bitsCell(out, values[i], list[i].reg.space),
                   {std::to_string(values[i]), values[i]}});
    table.print(out, context.format());
}

// One value alone: of a field what it means, else the number.
std::string valueText(const Asked& asked, std::uint32_t value) {
    if (asked.field == nullptr)
        return hexText(value, asked.reg.space);
    for (const Orvane::DecodedField& each : Orvane::RegisterMap::decode(*asked.mapped, value))
        if (each.field == asked.field)
            return each.valueText();
    return {};
}

void printValues(Context& context, const Options& options, const std::vector<Asked>& list,
                 const std::vector<std::uint32_t>& values) {
    Stream& out = context.console.out;
    const bool text = context.format() == Format::Text;
    if (text && list.size() == 1 && !options.grid)
        out.print("{}\n", valueText(list[0], values[0]));
    else if (text && (options.grid || (list.size() > kMostRows && !isNamed(list))))
        printGrid(out, list, values, options.distance());
    else
        printRows(context, options, list, values);
}

// What each register holds, beside what it held at the read before: the difference is what was latched.
void printTwice(Context& context, const std::vector<Asked>& list, const std::vector<std::uint32_t>& values) {
    FieldTable table(context.console.out, context.format(), true);
    for (std::size_t i = 0; i < list.size(); ++i)
        table.add(list[i], values[2 * i + 1], values[2 * i]);
    table.print(context.console.out);
}

int run(Context& context, const Options& options) {
    NamedPhy phy(context, options);
    const std::vector<Asked> list = phy.parse(options.addresses);
    if (options.twice) {
        std::vector<Asked> doubled;
        for (const Asked& each : list)
            doubled.insert(doubled.end(), 2, each);
        printTwice(context, list, phy.read(doubled));
        return kSuccess;
    }
    const std::vector<std::uint32_t> values = phy.read(list);
    if (showsFields(context, phy.maps(), list) && !options.grid) {
        FieldTable table(context.console.out, context.format());
        for (std::size_t i = 0; i < list.size(); ++i)
            table.add(list[i], values[i]);
        table.print(context.console.out);
    } else {
        printValues(context, options, list, values);
    }
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
                      "  orvane read OV0001:0 3 --routed 11.0x1004  through the PHY's firmware\n"
                      "  orvane read OV0001:0 3 AN.STATUS --fields  by name, decoded\n"
                      "  orvane read OV0001:0 3 AN.STATUS.LINK --twice\n"
                      "  orvane read OV0001:0 3 'PCS.*' --map chip.json\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option(
            "ADDRESS", options->addresses,
            "MMD.REGISTER (with --c22 and --ext32 a number), FIRST+COUNT, FIRST-LAST, a name or a pattern")
        ->required()
        ->type_name("");
    verb.add_flag("--grid", options->grid, "Eight values in a line (the default for more than 16)");
    verb.add_flag("--twice", options->twice,
                  "Read twice in a row: what a latched bit held, and what it holds");
    addSideEffects(verb, context);
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

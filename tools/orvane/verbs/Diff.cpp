// orvane diff: two dumps, or a dump and a PHY as it is now.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/board/DumpFile.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/NamedPhy.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options {
    std::string first;
    std::string second; // a dump, or with a PHY a device
    int phy = -1;
    bool live = false;
    bool routed = false;
};

// The present values of what is in the dump; what a read changes is read where the dump names it.
std::map<Register, std::uint32_t> liveValues(Context& context, const Options& options, const Dump& dump) {
    RegisterOptions reached;
    reached.device = options.second.empty() ? dump.header.device : options.second;
    reached.phy = options.phy < 0 ? dump.header.phy : static_cast<unsigned>(options.phy);
    reached.routed = options.routed;
    NamedPhy phy(context, reached);
    std::vector<Asked> list;
    for (const auto& [reg, value] : dump.values)
        list.push_back({reg, phy.maps().find(reg)});
    const std::vector<std::uint32_t> values = phy.read(list);
    std::map<Register, std::uint32_t> result;
    for (std::size_t i = 0; i < list.size(); ++i)
        result[list[i].reg] = values[i];
    return result;
}

std::map<Register, std::uint32_t> otherValues(Context& context, const Options& options, const Dump& dump) {
    if (options.live || options.phy >= 0)
        return liveValues(context, options, dump);
    if (options.second.empty())
        throw UsageError("diff: there is nothing to compare with: give a second dump, DEVICE PHY, or --live");
    Dump other = readDump(options.second);
    if (other.header.space != dump.header.space)
        throw Failure(fmt::format("diff: {} holds {} registers, {} {}", options.first,
                                  nameOf(dump.header.space), options.second, nameOf(other.header.space)));
    return other.values;
}

// A row for each register that differs or is in one of them only.
Table differences(const Stream& out, const Dump& dump, const std::map<Register, std::uint32_t>& other) {
    const Space space = dump.header.space;
    Table table({{"address", "ADDRESS"},
                 {"first", "FIRST"},
                 {"second", "SECOND"},
                 {"changed", "CHANGED"},
                 {"", "BITS"}});
    const Cell none{"-", nullptr};
    for (const auto& [reg, value] : dump.values) {
        const auto found = other.find(reg);
        if (found == other.end())
            table.add({reg.text(), hexCell(out, value, space), none, none, ""});
        else if (const std::uint32_t changed = value ^ found->second; changed != 0)
            table.add({reg.text(), hexCell(out, value, space), hexCell(out, found->second, space, changed),
                       hexCell(out, changed, space), bitsCell(out, found->second, space, changed)});
    }
    for (const auto& [reg, value] : other)
        if (dump.values.count(reg) == 0)
            table.add({reg.text(), none, hexCell(out, value, space), none, ""});
    return table;
}

// The same by fields, of registers that both have.
FieldTable fieldDifferences(const Stream& out, Format format, const KnownMaps& maps, const Dump& dump,
                            const std::map<Register, std::uint32_t>& other) {
    FieldTable table(out, format, true);
    for (const auto& [reg, value] : dump.values)
        if (const auto found = other.find(reg); found != other.end() && found->second != value)
            table.add({reg, maps.find(reg)}, found->second, value, true);
    return table;
}

int run(Context& context, const Options& options) {
    const Dump dump = readDump(options.first);
    const std::map<Register, std::uint32_t> other = otherValues(context, options, dump);
    Stream& out = context.console.out;
    const Format format = context.format();
    const Table table = differences(out, dump, other);
    if (const KnownMaps maps(context); table.size() > 0 && showsFields(context, maps, {}))
        fieldDifferences(out, format, maps, dump, other).print(out);
    else if (table.size() > 0 || format != Format::Text)
        table.print(out, format);
    return table.size() == 0 ? kSuccess : kFailed;
}

} // namespace

void addDiff(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(app, {"diff", "Compare a dump with another one, or with a PHY as it is now",
                                   "  orvane diff before.dump after.dump\n"
                                   "  orvane diff before.dump --live           the PHY that it was taken of\n"
                                   "  orvane diff before.dump OV0002:0 3       another PHY\n"
                                   "  orvane diff before.dump after.dump --fields --map chip.json\n"
                                   " The exit status is 1 when there are differences.\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("DUMP", options->first, "A dump")->required()->type_name("");
    verb.add_option("OTHER", options->second, "Another dump, or before a PHY a device")->type_name("");
    verb.add_option("PHY", options->phy, "PHY address on the device")
        ->type_name("")
        ->check(CLI::Range(0, 127).description(""));
    verb.add_flag("--live", options->live, "Compare with the PHY that the dump was taken of");
    verb.add_flag("--routed", options->routed, "Read the PHY by the library's path for each register");
    addFieldOptions(verb, context);
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

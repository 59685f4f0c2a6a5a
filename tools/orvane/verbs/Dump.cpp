// orvane dump: many registers into a file.
#include "tools/orvane/board/DumpFile.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/NamedPhy.h"
#include "tools/orvane/output/Progress.h"
#include "tools/orvane/verbs/Verbs.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace OrvaneTool {
namespace {

struct Options : RegisterOptions {
    std::vector<std::string> ranges;
    std::string file;
    bool force = false;
};

// A dump is of one space, and has each register once.
void check(const std::vector<Asked>& list) {
    std::set<Register> seen;
    for (const Asked& each : list) {
        if (each.reg.space != list.front().reg.space)
            throw UsageError(fmt::format("a dump is of one register space: {} is of {}, {} of {}",
                                         list.front().reg.text(), nameOf(list.front().reg.space),
                                         each.reg.text(), nameOf(each.reg.space)));
        if (!seen.insert(each.reg).second)
            throw UsageError(fmt::format("the ranges name {} more than once", each.reg.text()));
    }
}

// Reads block by block; what an earlier attempt has is not read again.
void fill(Context& context, NamedPhy& phy, DumpWriter& writer, const std::vector<Asked>& list,
          std::size_t done, FieldTable* fields) {
    ProgressBar bar(context.console.err, "dump", list.size());
    while (done < list.size()) {
        bar.show(done);
        const std::size_t count = std::min(kLongestBlock, list.size() - done);
        const auto first = list.begin() + static_cast<std::ptrdiff_t>(done);
        const std::vector<Asked> some(first, first + static_cast<std::ptrdiff_t>(count));
        const std::vector<std::uint32_t> values = phy.read(some);
        std::vector<Register> registers;
        for (std::size_t i = 0; i < some.size(); ++i) {
            registers.push_back(some[i].reg);
            if (fields != nullptr)
                fields->add(some[i], values[i]);
        }
        writer.add(registers, values);
        done += count;
    }
}

int run(Context& context, const Options& options) {
    NamedPhy phy(context, options);
    const std::vector<Asked> list = phy.parse(options.ranges);
    check(list);
    DumpWriter writer(options.file,
                      {phy.device().name(), options.phy, list.front().reg.space,
                       fmt::format("{}", fmt::join(options.ranges, " "))},
                      options.force);
    const std::size_t resumedAt = std::min(writer.resumedAt(), list.size());
    FieldTable fields(context.console.out, Format::Text);
    fill(context, phy, writer, list, resumedAt, context.fields ? &fields : nullptr);
    writer.complete();
    if (fields.size() > 0)
        fields.print(context.console.out);
    context.console.out.print("{}: {} registers{}\n", options.file, list.size(),
                              resumedAt > 0 ? fmt::format(", {} of them from an earlier attempt", resumedAt)
                                            : "");
    return kSuccess;
}

} // namespace

void addDump(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"dump", "Save the values of many registers in a file",
                      "  orvane dump OV0001:0 3 1.0+4096 -o before.dump\n"
                      "  orvane dump OV0001:0 3 1.0-0xFF 3.0-0xFF 30.0xC000+256 -o all.dump\n"
                      "  orvane dump OV0001:0 3 'PCS.**' AN -o names.dump   what is safe to read of them\n"
                      " A dump that was broken off goes on where it stopped when it is asked for again.\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("RANGES", options->ranges,
                    "Registers: ADDRESS, FIRST+COUNT, FIRST-LAST, names or patterns")
        ->required()
        ->type_name("");
    verb.add_option("-o,--output", options->file, "The file")->required()->type_name("FILE");
    verb.add_flag("--force", options->force, "Overwrite the file");
    addSideEffects(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

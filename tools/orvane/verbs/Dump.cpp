// orvane dump: many registers into a file.
#include "tools/orvane/board/DumpFile.h"
#include "tools/orvane/cli/RegisterOptions.h"
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

void requireEachOnce(const std::vector<Register>& list) {
    std::set<Register> seen;
    for (const Register& reg : list)
        if (!seen.insert(reg).second)
            throw UsageError(fmt::format("the ranges name {} more than once", reg.text()));
}

int run(Context& context, const Options& options) {
    const std::vector<Register> list = options.registers(options.ranges);
    requireEachOnce(list);
    Device device(context, options.device);
    DumpWriter writer(
        options.file,
        {device.name(), options.phy, options.space(), fmt::format("{}", fmt::join(options.ranges, " "))},
        options.force);
    Registers registers(device, options.phy, options.way());
    std::size_t done = std::min(writer.resumedAt(), list.size());
    const std::size_t resumedAt = done;
    {
        ProgressBar bar(context.console.err, "dump", list.size());
        while (done < list.size()) {
            bar.show(done);
            const std::size_t count = std::min(kLongestBlock, list.size() - done);
            const auto first = list.begin() + static_cast<std::ptrdiff_t>(done);
            const std::vector<Register> some(first, first + static_cast<std::ptrdiff_t>(count));
            writer.add(some, registers.read(some));
            done += count;
        }
    }
    writer.complete();
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
                      " A dump that was broken off goes on where it stopped when it is asked for again.\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("RANGES", options->ranges, "Registers: ADDRESS, FIRST+COUNT or FIRST-LAST")
        ->required()
        ->type_name("");
    verb.add_option("-o,--output", options->file, "The file")->required()->type_name("FILE");
    verb.add_flag("--force", options->force, "Overwrite the file");
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

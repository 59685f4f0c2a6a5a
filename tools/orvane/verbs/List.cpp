// orvane list: the devices of the boards.
#include "tools/orvane/board/Boards.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options {
    unsigned expected = 0; // boards; 0: any number
};

Boards boards(Context& context, const Options& options) {
    Search search;
    search.time = context.searchTime.value_or(search.time);
    if (options.expected > 0)
        search.enough = [&](const Orvane::FoundBoard&, std::size_t count) {
            return count >= options.expected;
        };
    return lookForBoards(context, search);
}

void putDevices(RecordSink& records, const Boards& boards) {
    unsigned adapter = 0;
    for (const Orvane::FoundBoard& board : boards.list)
        for (const unsigned port : board.ports)
            records.put(Record("device")
                            .device(fmt::format("{}:{}", board.serial, port))
                            .put("adapter", adapter++)
                            .put("address", board.address)
                            .put("kind", port < 10 ? "mdio" : "smbus")
                            .put("ports", {fmt::format("{}", fmt::join(board.ports, " ")), board.ports}));
}

// Throws Failure when there are others than were to be there.
void check(const Context& context, const Options& options, const Boards& boards) {
    const std::size_t count = boards.list.size();
    if (options.expected > 0 && count != options.expected)
        throw Failure(fmt::format("list: {} of {} boards answered", count, options.expected));
    if (count == 0)
        throw Failure(context.addresses.empty()
                          ? "list: no board answers on the local networks (--address asks one directly)"
                          : fmt::format("list: no board answers at {}", fmt::join(context.addresses, ", ")));
    if (!boards.doubt.empty())
        throw Failure(fmt::format("list: there may be more boards: {}", boards.doubt));
}

int run(Context& context, const Options& options) {
    RecordSink& records = context.records({{"adapter", "address", "kind", "ports"},
                                           {{"device", "NAME"},
                                            {"adapter", "ADAPTER", true},
                                            {"address", "ADDRESS"},
                                            {"port", "PORT", true},
                                            {"kind", "KIND"},
                                            {"ports", "BOARD'S PORTS"}}});
    const Boards found = boards(context, options);
    putDevices(records, found);
    check(context, options, found);
    return kSuccess;
}

} // namespace

void addList(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"list", "List the devices of the boards that answer",
                      "  orvane list\n"
                      "  orvane list --address 192.168.1.20\n"
                      "  orvane list --expect 12 --time 30    until twelve boards are there, 30 s at most\n"
                      "  orvane list --json | jq -r '.[].device'\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("--expect", options->expected,
                    "End when so many boards are there; status 1 when they are not")
        ->type_name("N")
        ->check(CLI::PositiveNumber.description(""));
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

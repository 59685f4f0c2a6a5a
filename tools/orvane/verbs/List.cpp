// orvane list: the devices of the boards.
#include "tools/orvane/board/Device.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>
#include <map>

namespace OrvaneTool {
namespace {

struct Options {};

int run(Context& context, const Options&) {
    discoverBoards(context);
    const auto& devices = HW_Interface_Object.devices;
    std::map<std::pair<std::string, std::string>, std::vector<int>> ports; // of each board
    for (const auto& device : devices)
        ports[{device->boardSerial, device->address}].push_back(device->port);

    Table table({{"name", "NAME"},
                 {"adapter", "ADAPTER", true},
                 {"address", "ADDRESS"},
                 {"port", "PORT", true},
                 {"kind", "KIND"},
                 {"board_ports", "BOARD'S PORTS"}});
    unsigned adapter = 0;
    for (const auto& device : devices) {
        const auto& siblings = ports[{device->boardSerial, device->address}];
        table.add({device->name,
                   {std::to_string(adapter), adapter},
                   device->address,
                   {std::to_string(device->port), device->port},
                   device->port < 10 ? "mdio" : "smbus",
                   {fmt::format("{}", fmt::join(siblings, " ")), siblings}});
        ++adapter;
    }
    if (table.size() > 0 || context.format() != Format::Text)
        table.print(context.console.out, context.format());
    if (table.size() == 0)
        throw Failure(context.addresses.empty()
                          ? "list: no board answers on the local networks (--address asks one directly)"
                          : fmt::format("list: no board answers at {}", fmt::join(context.addresses, ", ")));
    return kSuccess;
}

} // namespace

void addList(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(app, {"list", "List the devices of the boards that answer",
                                   "  orvane list\n"
                                   "  orvane list --address 192.168.1.20\n"
                                   "  orvane list --json | jq -r '.[].name'\n"});
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
    setAction(verb, context, std::make_shared<Options>(), run);
}

} // namespace OrvaneTool

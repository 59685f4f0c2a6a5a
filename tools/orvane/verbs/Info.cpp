// orvane info: what there is to know about one device.
#include "tools/orvane/board/Targets.h"
#include "tools/orvane/cli/Verb.h"
#include "tools/orvane/verbs/Verbs.h"

#include <array>
#include <cstdlib>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options {
    std::string device;
    unsigned phy = 0;
    bool withPhy = false;
};

// How the library opens its sessions, as its environment variables say.
std::string sessionMode() {
    for (const auto& [variable, mode] : std::array<std::pair<const char*, const char*>, 3>{
             {{"EXCLUSIVE_KEY", "exclusive"}, {"CONCURRENT_KEY", "concurrent"}, {"SIMPLE_KEY", "simple"}}})
        if (const char* key = std::getenv(variable)) // NOLINT(concurrency-mt-unsafe)
            return fmt::format("{} ({}={})", mode, variable, key);
    return "simple";
}

std::string portText(const Target& target) {
    const unsigned port = target.port->number();
    return target.isSmbus() ? fmt::format("{} (SMBus, I2C bus {})", port, port - 10)
                            : fmt::format("{} (MDIO)", port);
}

std::vector<std::string> services(Context& context, const Orvane::Phy& phy) {
    std::vector<std::string> names;
    for (const auto& [name, port] : phy.shell().services(context.within()))
        names.push_back(name);
    return names;
}

// The identifier registers of the first MMD that has them.
Cell identifier(Context& context, const Orvane::Phy& phy) {
    const auto words = phy.read(std::vector<Orvane::RegisterAddress>{{1, 2}, {1, 3}}, context.within());
    return {fmt::format("0x{:04X} 0x{:04X}", words[0], words[1]), words[0] << 16U | words[1]};
}

int run(Context& context, const Options& options) {
    RecordSink& records =
        context.records({{"address", "kind", "session", "key", "services", "identifier"}, {}});
    const Target target = findTarget(context, options.device);
    const Orvane::Phy phy = target.port->phy(options.phy);
    phy.open(context.within());
    const std::vector<std::string> names = services(context, phy);
    std::vector<std::pair<const char*, Cell>> facts{
        {"address", target.address},
        {"kind", {portText(target), target.isSmbus() ? "smbus" : "mdio"}},
        {"session", sessionMode()},
        {"key", phy.key()},
        {"services", {fmt::format("{}", fmt::join(names, " ")), names}},
    };
    if (options.withPhy)
        facts.emplace_back("identifier", identifier(context, phy));
    Record record("device");
    record.device(target.name);
    if (options.withPhy)
        record.phy(options.phy);
    Stream& out = context.console.out;
    if (records.isText())
        out.print("{:<11} {}\n", "device", target.name);
    for (const auto& [name, fact] : facts) {
        record.put(name, fact);
        if (records.isText())
            out.print("{:<11} {}\n", std::string_view(name) == "kind" ? "port" : name, fact.text);
    }
    records.put(record);
    return kSuccess;
}

} // namespace

void addInfo(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(app, {"info", "Show one device: its address, port, session and services",
                                   "  orvane info OV0001:0\n"
                                   "  orvane info OV0001:0 --phy 3      its identifier as well\n"});
    auto options = std::make_shared<Options>();
    addDevice(verb, options->device);
    verb.add_option_function<unsigned>(
            "--phy",
            [options](unsigned phy) {
                options->phy = phy;
                options->withPhy = true;
            },
            "Read the identifier of this PHY")
        ->type_name("PHY")
        ->check(CLI::Range(0U, 127U).description(""));
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool

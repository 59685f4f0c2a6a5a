// orvane info: what there is to know about one device.
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/cli/RegisterOptions.h"
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

std::string portText(const Device& device) {
    return device.isSmbus() ? fmt::format("{} (SMBus, I2C bus {})", device.port(), device.port() - 10)
                            : fmt::format("{} (MDIO)", device.port());
}

std::vector<std::string> services(const Orvane::PhySession& session) {
    using Board = Orvane::BoardConnection;
    std::vector<std::string> names;
    for (const auto& [id, name] :
         std::array<std::pair<Board::clientId, const char*>, 6>{{{Board::SETUP, "setup"},
                                                                 {Board::MDIO, "mdio"},
                                                                 {Board::I2C, "i2c"},
                                                                 {Board::GPIO, "gpio"},
                                                                 {Board::KEEPALIVE, "keep-alive"},
                                                                 {Board::JTAG, "jtag"}}})
        if (session.connection->getClient(id)->client != nullptr)
            names.emplace_back(name);
    return names;
}

// The identifier registers of the first MMD that has them.
Cell identifier(Device& device, unsigned phy) {
    const auto words = Registers(device, phy, Way::Queued).read({{Space::C45, 1, 2}, {Space::C45, 1, 3}});
    return {fmt::format("{} {}", hexText(words[0], Space::C45), hexText(words[1], Space::C45)),
            words[0] << 16U | words[1]};
}

int run(Context& context, const Options& options) {
    RecordSink& records =
        context.records({{"address", "kind", "session", "key", "services", "identifier"}, {}});
    Device device(context, options.device);
    const Orvane::PhySession& session = device.session(options.phy);
    const std::vector<std::string> names = services(session);
    std::vector<std::pair<const char*, Cell>> facts{
        {"address", device.address()},
        {"kind", {portText(device), device.isSmbus() ? "smbus" : "mdio"}},
        {"session", sessionMode()},
        {"key", session.mdio.key},
        {"services", {fmt::format("{}", fmt::join(names, " ")), names}},
    };
    if (options.withPhy)
        facts.emplace_back("identifier", identifier(device, options.phy));
    Record record("device");
    record.device(device.name());
    if (options.withPhy)
        record.phy(options.phy);
    if (records.isText())
        context.console.out.print("{:<11} {}\n", "device", device.name());
    for (const auto& [name, fact] : facts) {
        record.put(name, fact);
        if (records.isText())
            context.console.out.print("{:<11} {}\n", std::string_view(name) == "kind" ? "port" : name,
                                      fact.text);
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

// orvane-demo: finds boards, opens one by name, reads and writes registers in every way, closes.
#include "examples/demo/Sections.h"

#include <cstdio>
#include <cstring>
#include <exception>
#include <orvane/orvane.h>

namespace {

constexpr const char* kUsage =
    "Usage: orvane-demo [--address IPV4]\n"
    "Lists the boards that answer a multicast question on the local networks (or the\n"
    "board at IPV4), opens ports of the first, writes registers and reads them back.\n";

int run(const std::string& address) {
    Demo::Report report;
    HW_Initialize();
    std::vector<Demo::Port> ports = Demo::listDevices(report, address);
    if (ports.size() < 2) {
        report.failure("the demo needs a board with two ports");
        return report.conclude();
    }
    const std::optional<Demo::Port> smbusSide = Demo::smbusSideOf(ports[0], ports);
    ports.resize(2);
    if (smbusSide)
        ports.push_back(*smbusSide);
    Demo::openPorts(report, ports);
    Demo::clause45(report, ports[0]);
    Demo::clause22(report, ports[0]);
    Demo::extension32(report, ports[0]);
    Demo::mixedBlocks(report, ports[0]);
    Demo::twoPorts(report, ports[0], ports[1]);
    Demo::boardServices(report, ports[0]);
    if (smbusSide)
        Demo::smbus(report, ports[0], *smbusSide);
    Demo::closeAll(report, ports);
    if (HW_Fail())
        report.failure(std::string("the library recorded an error: ") +
                       (HW_Error() ? HW_Error() : "out of memory"));
    return report.conclude();
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (argc != 1 && !(argc == 3 && std::strcmp(argv[1], "--address") == 0)) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    try {
        return run(argc == 3 ? argv[2] : "");
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "orvane-demo: %s\n", problem.what());
        return 1;
    }
}

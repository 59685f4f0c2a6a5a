// Finding, opening and closing devices.
#include "examples/demo/Sections.h"

#include <cstdlib>
#include <memory>
#include <orvane/orvane.h>
#include <orvane/orvane.hpp>

namespace Demo {

namespace {

// Texts that the flat interface returns belong to the caller.
std::string owned(char* text) {
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return text ? text : "";
}

std::vector<Port> knownPorts() {
    std::vector<Port> ports;
    const auto count = static_cast<unsigned>(HW_Interface_Object.devices.size());
    for (unsigned adapter = 0; adapter < count; ++adapter)
        ports.push_back({adapter, owned(HW_Device(adapter)), HW_Interface_Object.devices[adapter]->address});
    return ports;
}

} // namespace

std::vector<Port> listDevices(Report& report, const std::string& address) {
    const bool everywhere = address.empty();
    report.section("Devices", everywhere ? "every board that answers a multicast question, port by port"
                                         : "the ports of the board at " + address);
    const Stopwatch watch;
    if (everywhere)
        HW_NumberOfDevices();
    else
        owned(HW_DeviceByIp(address.c_str()));
    const std::string time = duration(watch.elapsed());

    std::vector<Port> ports = knownPorts();
    for (const Port& port : ports)
        report.row({"found", port.name, "", "at " + port.address, ""});
    report.row({"", std::to_string(ports.size()) + " devices", "", "", time});
    return ports;
}

void openPorts(Report& report, const std::vector<Port>& ports) {
    report.section("Open by name", "the first access to a PHY opens its session on the board");
    for (const Port& port : ports) {
        const Stopwatch watch;
        if (HW_Open(port.name.c_str()) != 1)
            report.failure("could not open " + port.name);
        const std::string time = duration(watch.elapsed());
        report.row({"open", port.name, "", "adapter " + std::to_string(HW_GetDefaultAdapter()), time});
    }
    for (const unsigned reg : {2U, 3U}) {
        const Stopwatch watch;
        const unsigned identifier = HW_Read_Abstracted(ports.front().adapter, kPhy, 1, reg);
        report.row({"read", "PHY " + std::to_string(kPhy) + " MMD 1 register " + std::to_string(reg),
                    hex(identifier, 4), "identifier", duration(watch.elapsed())});
    }
}

void closeAll(Report& report, const std::vector<Port>& ports) {
    report.section("Close", "ends every session; the device list stays");
    const Stopwatch watch;
    for (const Port& port : ports)
        if (HW_CloseAdapter(port.adapter) != 0)
            report.failure("could not close " + port.name);
    HW_Close();
    report.row({"close", std::to_string(ports.size()) + " ports", "", "", duration(watch.elapsed())});
}

} // namespace Demo

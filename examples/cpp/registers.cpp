// Finds a board, reads and writes PHY registers on it by adapter and by session, with the class interface.
//
// Usage: orvane-example-cpp [DEVICE]
// DEVICE is a board's serial number, a colon and a port, such as OV0001:0; without one, the first device that
// answers is taken.
#include <cstdio>
#include <orvane/orvane.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int kPhy = 3;
constexpr unsigned kMmd = 1;
constexpr unsigned kScratch = 0xC010;

constexpr unsigned c45(unsigned mmd, unsigned reg) {
    return mmd << 16U | reg;
}

void require(bool condition, const char* what) {
    if (!condition)
        throw std::runtime_error(what);
}

std::string firstDevice(Orvane::HWInterface& devices) {
    require(devices.numberOfDevices() > 0, "no board answered");
    return devices.devices[0]->name;
}

// By adapter and PHY id: the library opens the session.
void accessByAdapter(Orvane::HWInterface& devices, const std::string& name) {
    const auto adapter = static_cast<unsigned>(devices.deviceNumber(name, ""));
    require(devices.openAdapter(adapter), "the device cannot be opened");
    devices.writeAdapter(adapter, kPhy, kMmd, kScratch, 0x1234);
    require(devices.readAdapter(adapter, kPhy, kMmd, kScratch) == 0x1234, "the register lost its value");
    const unsigned high = devices.readAdapter(adapter, kPhy, kMmd, 2);
    const unsigned low = devices.readAdapter(adapter, kPhy, kMmd, 3);
    std::printf("%s: identifier %04X%04X\n", name.c_str(), high, low);
}

// By session, as for every bus of the board. The session belongs to its device.
void accessBySession(Orvane::HWInterface& devices, const std::string& name) {
    const Orvane::SessionWrapper session(devices.getPhySession(name, kPhy));
    const std::vector<unsigned> addresses{c45(kMmd, kScratch), c45(kMmd, kScratch + 1)};
    Orvane::mdio.blockWrite(session, addresses, {0xAAAA, 0x5555});
    require(Orvane::mdio.blockRead(session, addresses) == std::vector<unsigned>{0xAAAA, 0x5555},
            "the registers lost their values");

    // Writes and reads of several frames in one call to the board.
    Orvane::MDIO::MdioAsync queue;
    queue.write(c45(kMmd, kScratch), 7);
    queue.read(c45(kMmd, kScratch));
    queue.read(c45(kMmd, kScratch + 1));
    require(queue.execute(session) == std::vector<unsigned>{7, 0x5555}, "the block went wrong");
}

} // namespace

int main(int argc, char** argv) {
    try {
        Orvane::HWInterface devices; // closes everything when it goes
        const std::string name = argc > 1 ? argv[1] : firstDevice(devices);
        accessByAdapter(devices, name);
        accessBySession(devices, name);
        std::puts("every register holds what was written");
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}

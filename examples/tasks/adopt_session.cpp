// Opens an exclusive session with a key of its own and hands it to the flat interface.
#include <cstdio>
#include <exception>
#include <memory>
#include <orvane/orvane.hpp>
#include <string>

namespace {

// What the environment variable EXCLUSIVE_KEY asks for, without touching the environment. The session is
// named after the device, not after the board: the flat interface finds the device by that name.
std::unique_ptr<Orvane::PhySession> openExclusive(const std::string& device, int phy, unsigned short key) {
    const auto index = static_cast<std::size_t>(HW_Interface_Object.deviceIndex(device));
    const Orvane::SimpleDeviceEntry& entry = *HW_Interface_Object.devices[index];
    Orvane::MdioExclusive mode{};
    mode.phyAddress = phy;
    mode.deviceIndex = static_cast<unsigned>(entry.port);
    mode.exclusive = 1;
    mode.key = key;
    auto session =
        std::make_unique<Orvane::PhySession>(Orvane::AddressResponse(entry.name, entry.address), mode);
    Orvane::Setup::openConnection(*session);
    session->startKeepAlive();
    return session;
}

} // namespace

int main() {
    constexpr int phy = 3;
    try {
        HW_Initialize();
        HW_Open("OV0001:0"); // the device is known and its adapter open; no session yet
        auto session = openExclusive("OV0001:0", phy, 0x4711);
        std::printf("session open, key 0x%04X\n", unsigned{session->mdio.key});

        if (!HW_GlobalInterface_setPhySession(session.get()))
            return 1;
        static_cast<void>(session.release()); // the flat interface owns it now, and closes it in HW_Close()
        HW_Write_Abstracted(HW_GetDefaultAdapter(), phy, 1, 0xC010, 0x1234);
        std::printf("through it: 0x%04X\n", HW_Read_Abstracted(HW_GetDefaultAdapter(), phy, 1, 0xC010));
        HW_Close();
        return HW_Fail() ? 1 : 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}

// counted_calls OPERATION TIMES ADDRESS: does an operation on the board at an address, seen by callgrind
// only.
#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/sessions/PhySession.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <orvane/orvane.h>
#include <orvane/rack.hpp>
#include <valgrind/callgrind.h>

namespace {

constexpr int kPhy = 3;
constexpr Orvane::MdioExclusive kSimple{kPhy, 0, 1, 0, 1, 0, 0};

using Operation = std::function<void()>;

// The first time is not counted: it resolves symbols and fills buffers.
void count(int times, const Operation& operation) {
    operation();
    for (int i = 0; i < times; ++i) {
        CALLGRIND_TOGGLE_COLLECT;
        operation();
        CALLGRIND_TOGGLE_COLLECT;
    }
}

void countClassReads(int times, const char* address) {
    Orvane::PhySession session(Orvane::AddressResponse("board", address), kSimple);
    Orvane::Setup::openConnection(session);
    count(times, [&session] { Orvane::mdio.read(&session, 0x10020); });
}

void countRackReads(int times, const char* address) {
    Orvane::Rack rack;
    rack.know("BOARD7", address);
    const Orvane::Phy phy = rack.open("BOARD7:0").phy(kPhy);
    phy.open();
    count(times, [&phy] { phy.read({1, 0x20}); });
}

void countRackLists(int times, const char* address) {
    Orvane::Rack rack;
    rack.know("BOARD7", address);
    const Orvane::Phy phy = rack.open("BOARD7:0").phy(kPhy);
    phy.open();
    count(times, [&phy] { phy.read({30, 0}, 873); });
}

// Runs with the first device of the board as the default adapter.
void countFlat(int times, const char* address, const Operation& operation) {
    HW_Initialize();
    std::free(HW_DeviceByIp(address));
    HW_OpenAdapter(0);
    count(times, operation);
    HW_CloseAdapter(0);
}

void countNamed(const char* operation, int times, const char* address) {
    const auto is = [operation](const char* name) { return std::strcmp(operation, name) == 0; };
    const auto logRecord = [] { HW_Logging_MDIORead(0, kPhy, 1, 0x20, 0x1234); };
    const auto routedRead = [] { ZR_API_MDIO_Read(kPhy, 1, 0x20); };
    if (is("class read"))
        return countClassReads(times, address);
    if (is("rack read"))
        return countRackReads(times, address);
    if (is("rack list"))
        return countRackLists(times, address);
    if (is("flat read"))
        return countFlat(times, address, [] { HW_Read_Abstracted(0, kPhy, 1, 0x20); });
    if (is("log record, off"))
        return count(times, logRecord);
    HW_EnableLogging(std::tmpfile());
    if (is("log record"))
        count(times, logRecord);
    else if (is("logged read"))
        countFlat(times, address, routedRead);
    else
        throw std::invalid_argument(operation);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4)
        return 2;
    try {
        countNamed(argv[1], std::stoi(argv[2]), argv[3]);
        return HW_Fail();
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "counted_calls: %s\n", problem.what());
        return 1;
    }
}

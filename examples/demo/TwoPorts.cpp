// Two ports of a board side by side: the same register of the same PHY id is another register on each port.
#include "examples/demo/Sections.h"

#include <atomic>
#include <orvane/orvane.h>
#include <thread>

namespace Demo {

namespace {

constexpr unsigned kMmd = 1;
constexpr unsigned kRegister = 0xC030;
constexpr unsigned kRounds = 500;

// Writes and reads back `kRounds` values on one port. Returns how many came back wrong.
unsigned hammer(const Port& port, unsigned seed) {
    unsigned wrong = 0;
    for (unsigned i = 0; i < kRounds; ++i) {
        HW_Write_Abstracted(port.adapter, kPhy, kMmd, kRegister, seed + i);
        if (HW_Read_Abstracted(port.adapter, kPhy, kMmd, kRegister) != seed + i)
            ++wrong;
    }
    return wrong;
}

} // namespace

void twoPorts(Report& report, const Port& first, const Port& second) {
    report.section("Two ports", "the same PHY id and register on " + first.name + " and " + second.name);
    HW_Write_Abstracted(first.adapter, kPhy, kMmd, kRegister, 0x1111);
    HW_Write_Abstracted(second.adapter, kPhy, kMmd, kRegister, 0x2222);
    for (const auto& [port, expected] : {std::pair{first, 0x1111U}, std::pair{second, 0x2222U}}) {
        const Stopwatch watch;
        const unsigned value = HW_Read_Abstracted(port.adapter, kPhy, kMmd, kRegister);
        report.readback(port.name + " MMD 1 " + hex(kRegister, 4), value, expected, 4,
                        duration(watch.elapsed()));
    }

    const Stopwatch watch;
    std::atomic<unsigned> wrong{0};
    std::thread other([&] { wrong += hammer(second, 0x8000); });
    wrong += hammer(first, 0x4000);
    other.join();
    const std::string time = duration(watch.elapsed());
    report.row({"both", std::to_string(4 * kRounds) + " accesses, 2 threads", "",
                wrong == 0 ? "all as written" : std::to_string(wrong) + " WRONG", time});
    if (wrong != 0)
        report.failure("values were mixed up between the ports");
}

} // namespace Demo

// A user's program that exits with sessions open: `flat_exit_job MODE DEVICE ADDRESS`. It exits when its
// standard input ends.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <orvane/orvane.hpp>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

// NOLINTBEGIN(concurrency-mt-unsafe): to exit beside threads is what it is about
namespace {

constexpr unsigned kValue = 0xCAFE;
constexpr unsigned kPhy = 5;

void awaitEndOfInput() {
    while (std::getchar() != EOF) {
    }
}

void writeOnce(unsigned adapter) {
    HW_Write_Abstracted(adapter, kPhy, 0x1E, 1, kValue);
}

unsigned readOnce(unsigned adapter) {
    return HW_Read_Abstracted(adapter, kPhy, 0x1E, 1);
}

// Threads that read from several sessions by every way there is, and go on reading while the process exits.
int exitUnderThreads(unsigned adapter) {
    constexpr unsigned kPhys = 4;
    std::vector<std::function<void()>> ways{[adapter] { HW_Interface_Object.closeAdapter(adapter + 1000); }};
    for (unsigned phy = 0; phy < kPhys; ++phy) {
        Orvane::PhySession* const session =
            HW_Interface_Object.getSimpleSession(int(adapter), int(phy))->session.get();
        ways.emplace_back([=] { HW_Read_Abstracted(adapter, phy, 0x1E, 1); });
        ways.emplace_back([=] { HW_Interface_Object.readAdapter(adapter, phy, 0x1E, 1); });
        ways.emplace_back([=] { Orvane::mdio.read(session, 0x1E0001); });
    }
    static std::atomic<int> reading{0};
    for (const auto& way : ways)
        std::thread([way] {
            for (unsigned long round = 0;; ++round) {
                try {
                    way();
                } catch (const std::exception&) { // closed
                }
                if (round == 10)
                    ++reading;
            }
        }).detach();
    while (reading < int(ways.size()))
        std::this_thread::yield();
    std::exit(readOnce(adapter) == kValue ? 0 : 1);
}

// A child that only exits leaves the sessions to its parent.
int exitAfterAChild(unsigned adapter) {
    const pid_t child = fork();
    if (child == 0)
        std::exit(0);
    int status = -1;
    waitpid(child, &status, 0);
    awaitEndOfInput();
    return status == 0 && readOnce(adapter) == kValue ? 0 : 1;
}

// A process that became another one before it opened anything, as a service does.
int exitAsAChild(const std::function<unsigned()>& openAdapter) {
    const pid_t child = fork();
    if (child != 0) {
        int status = -1;
        waitpid(child, &status, 0);
        return status == 0 ? 0 : 1;
    }
    const unsigned adapter = openAdapter();
    writeOnce(adapter);
    std::exit(readOnce(adapter) == kValue ? 0 : 1);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4)
        return 2;
    const std::string mode = argv[1];
    const auto openAdapter = [argv] {
        Orvane::AddressResponse found(std::string("host ") + argv[2], argv[3]);
        std::vector<Orvane::AddressResponse*> records{&found};
        HW_Interface_Object.updateSimpleDeviceList(records);
        HW_OpenAdapter(0);
        return 0U;
    };
    if (mode == "as-child")
        return exitAsAChild(openAdapter);
    const unsigned adapter = openAdapter();
    writeOnce(adapter);
    if (mode == "threads")
        return exitUnderThreads(adapter);
    if (mode == "fork")
        return exitAfterAChild(adapter);
    awaitEndOfInput();
    return 0;
}
// NOLINTEND(concurrency-mt-unsafe)

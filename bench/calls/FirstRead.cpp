// From a device's name to its first value.
#include "bench/calls/BareClient.h"
#include "bench/calls/Measure.h"
#include "bench/calls/Session.h"

#include <memory>
#include <orvane/orvane.h>
#include <stdexcept>
#include <unistd.h>

namespace OrvaneBench {

namespace {

// Makes the handles that a session holds, opens a session and reads.
class BareFirstRead {
public:
    explicit BareFirstRead(const std::string& host) : handles_(host), session_(handles_) {
        session_.read(kAddress);
    }

private:
    BareHandles handles_;
    BareSession session_;
};

} // namespace

// Closing waits for the keep-alive thread, so that there are fewer rounds. Both sides are measured after the
// same pause, in which the processors' caches cool down.
void compareFirstReads(const Arrangement& arrangement) {
    constexpr unsigned kPause = 200'000;
    const std::string& host = arrangement.boards.front();
    const FlatDevice device(host);
    std::vector<double> ours;
    std::vector<double> bare;
    for (int round = 0; round < arrangement.rounds / 4; ++round) {
        HW_CloseAdapter(device.adapter());
        usleep(kPause);
        ours.push_back(1e9 * secondsOf([&] {
                           HW_Open(device.name().c_str());
                           HW_Read(device.adapter(), kPhy, kMmd, kRegister);
                       }));
        usleep(kPause);
        std::unique_ptr<BareFirstRead> first;
        bare.push_back(1e9 * secondsOf([&] { first = std::make_unique<BareFirstRead>(host); }));
    }
    if (HW_Fail() != 0)
        throw std::runtime_error("a first read failed");
    report("first read after HW_Open", {{"ours", ours}, {"bare", bare}});
}

// A board that is not listed yet is looked for by multicast: its answer ends the search.
void measureOpening(const Arrangement& arrangement) {
    HW_Initialize();
    std::vector<double> found;
    for (std::size_t board = 1; board < arrangement.boards.size() && board <= 5; ++board)
        found.push_back(1e3 * secondsOf([board] {
                            if (HW_Open(("BENCH" + std::to_string(board) + ":0").c_str()) != 1)
                                throw std::runtime_error("a board was not found");
                        }));
    report("HW_Open of a board not seen before", {{"milliseconds", found}});
}

} // namespace OrvaneBench

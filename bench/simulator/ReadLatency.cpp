// bench_simulator: single register reads of a simulated board beside those of a bare rpcgen server that
// answers a constant, in turns; how many requests a board answers, and what many boards cost. All inside a
// private network of its own.
#include "bench/simulator/BareServer.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "simulator/engine/Sockets.h"

#include "mdio.h"
#include "setup.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <fstream>
#include <orvane/lab.h>
#include <rpc/rpc.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRounds = 200;
constexpr int kReadsInARound = 50;
constexpr int kWarmUp = 500;
constexpr int kWindow = 32; // requests under way at once
constexpr int kWindows = 3000;
constexpr const char* kBareAddress = "10.83.90.1";

double microseconds(Clock::duration time) {
    return std::chrono::duration<double, std::micro>(time).count();
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Reads one register over UDP through rpcgen's own stub.
class Reader {
public:
    Reader(const std::string& address, std::uint16_t port, unsigned identity) : identity_(identity) {
        sockaddr_in place = OrvaneSim::endPoint(address, port);
        int socket = RPC_ANYSOCK;
        client_ = clntudp_create(&place, SIM_MDIO, SIM_MDIO_VERSION, {5, 0}, &socket);
        if (!client_)
            throw std::runtime_error("cannot reach " + address);
    }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;
    ~Reader() { clnt_destroy(client_); }

    // Time of one read in microseconds.
    double read() {
        u_int address = 0x1E0001;
        u_int word = 0;
        sim_MDIO_Read_Param argument{identity_, {1, &address}};
        sim_MDIO_Read_Result result{};
        result.data = {1, &word};
        const auto begin = Clock::now();
        const clnt_stat status = sim_mdio_read_1(&argument, &result, client_);
        const auto end = Clock::now();
        if (status != RPC_SUCCESS || result.error != 0 || word != BareServer::kAnswer)
            throw std::runtime_error("a read went wrong");
        return microseconds(end - begin);
    }

private:
    CLIENT* client_ = nullptr;
    unsigned identity_;
};

// The port of the board's MDIO program, as its port mapper knows it.
std::uint16_t mdioPort(const std::string& address) {
    sockaddr_in place = OrvaneSim::endPoint(address, 111);
    return pmap_getport(&place, SIM_MDIO, SIM_MDIO_VERSION, IPPROTO_UDP);
}

unsigned openSession(const std::string& address) {
    CLIENT* client = clnt_create(address.c_str(), SIM_SETUP, SIM_SETUP_VERSION, "tcp");
    if (!client)
        throw std::runtime_error("cannot reach the board");
    sim_Open_Param argument{};
    argument.simple = 1;
    sim_Open_Result result{};
    const clnt_stat status = sim_open_connection_1(&argument, &result, client);
    clnt_destroy(client);
    if (status != RPC_SUCCESS || result.error != 0)
        throw std::runtime_error("cannot open a session");
    return (result.sequence << 8) | result.id;
}

void compareReads(std::uint16_t barePort) {
    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add();
    board.setRegister(OrvaneSim::Space::C45, 0, 0, 0x1E0001, BareServer::kAnswer);
    Reader simulated(board.address(), mdioPort(board.address()), openSession(board.address()));
    Reader bare(kBareAddress, barePort, 0);
    for (int i = 0; i < kWarmUp; ++i) {
        simulated.read();
        bare.read();
    }
    std::vector<double> simulatedTimes;
    std::vector<double> bareTimes;
    for (int round = 0; round < kRounds; ++round) {
        for (int i = 0; i < kReadsInARound; ++i)
            simulatedTimes.push_back(simulated.read());
        for (int i = 0; i < kReadsInARound; ++i)
            bareTimes.push_back(bare.read());
    }
    const double one = median(simulatedTimes);
    const double other = median(bareTimes);
    std::printf("single register read, medians of %d in turns: simulated board %.2f us, bare server %.2f us, "
                "ratio %.3f\n",
                kRounds * kReadsInARound, one, other, one / other);
}

// CPU seconds of this process's other threads, of which the lab's is the only one at work.
double otherThreadsSeconds() {
    const auto seconds = [](clockid_t clock) {
        timespec time{};
        ::clock_gettime(clock, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    };
    return seconds(CLOCK_PROCESS_CPUTIME_ID) - seconds(CLOCK_THREAD_CPUTIME_ID);
}

// A datagram that asks for one register.
std::vector<std::uint32_t> readRequest(unsigned identity) {
    std::vector<std::uint32_t> words{
        1, CALL, RPC_MSG_VERSION, SIM_MDIO, SIM_MDIO_VERSION, SIM_MDIO_READ, 0, 0,
        0, 0,    identity,        1,        0x1E0001};
    std::transform(words.begin(), words.end(), words.begin(), htonl);
    return words;
}

void countRequests() {
    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add();
    const sockaddr_in place = OrvaneSim::endPoint(board.address(), mdioPort(board.address()));
    const auto request = readRequest(openSession(board.address()));
    const Orvane::FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0)
        throw std::runtime_error("cannot reach the board");
    const double boardBefore = otherThreadsSeconds();
    const auto begin = Clock::now();
    std::array<char, 64> reply{};
    for (int window = 0; window < kWindows; ++window) {
        for (int i = 0; i < kWindow; ++i)
            ::send(socket.get(), request.data(), request.size() * sizeof request[0], 0);
        for (int i = 0; i < kWindow; ++i)
            if (::recv(socket.get(), reply.data(), reply.size(), 0) <= 0)
                throw std::runtime_error("a reply went wrong");
    }
    const double requests = double{kWindows} * kWindow;
    std::printf("%d reads under way at once: %.0f a second, %.2f us of the board's processor each\n", kWindow,
                requests / (microseconds(Clock::now() - begin) / 1e6),
                (otherThreadsSeconds() - boardBefore) / requests * 1e6);
}

// Resident memory of this process in MiB.
double residentMemory() {
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);)
        if (line.rfind("VmRSS:", 0) == 0)
            return std::atof(line.c_str() + 6) / 1024;
    return 0;
}

void startMany(unsigned count) {
    OrvaneSim::raiseDescriptorLimit();
    const double before = residentMemory();
    const auto begin = Clock::now();
    OrvaneSim::Lab lab;
    for (unsigned i = 0; i < count; ++i) {
        OrvaneSim::BoardOptions options;
        options.serial = "OV" + std::to_string(i);
        lab.add(options);
    }
    std::printf("%u boards: started in %.2f s, %.1f MiB\n", count, microseconds(Clock::now() - begin) / 1e6,
                residentMemory() - before);
}

} // namespace

int main() {
    try {
        OrvaneSim::PrivateNetwork::enter({});
        const BareServer bare(kBareAddress);
        compareReads(bare.port());
        countRequests();
        startMany(3000);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "bench_simulator: %s\n", problem.what());
        return 1;
    }
}

// bench_grpc ROUNDS: times gRPC unary calls with a register read's payload, in a private network.
#include "bench/Processors.h"
#include "simulator/network/PrivateNetwork.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <grpcpp/grpcpp.h>
#include <nlohmann/json.hpp>
#include <registers.grpc.pb.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace orvane_bench;

constexpr const char* kServer = "10.83.0.1:50051";
constexpr int kBatch = 20;

class RegisterService : public Registers::Service {
    grpc::Status Read(grpc::ServerContext*, const ReadRequest* request, ReadReply* reply) override {
        for (const unsigned address : request->addresses())
            reply->add_data(address & 0xFFFFU);
        return grpc::Status::OK;
    }
};

// On the board side of the network, as the simulated boards are.
[[noreturn]] void serve(int ready) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    OrvaneBench::keepToProcessorsOf(OrvaneBench::Side::Boards);
    OrvaneSim::PrivateNetwork::joinBoardSide();
    RegisterService service;
    grpc::ServerBuilder builder;
    builder.AddListeningPort(kServer, grpc::InsecureServerCredentials());
    builder.RegisterService(&service);
    const std::unique_ptr<grpc::Server> server = builder.BuildAndStart();
    const char yes = 1;
    if (!server || write(ready, &yes, sizeof yes) != sizeof yes)
        _exit(1);
    for (;;)
        pause();
}

// Starts the server's process and returns when it serves.
pid_t startServer() {
    int ready[2];
    if (pipe(ready) != 0)
        throw std::runtime_error("no pipe");
    const pid_t server = fork();
    if (server == 0)
        serve(ready[1]);
    close(ready[1]);
    char yes = 0;
    const bool serving = read(ready[0], &yes, sizeof yes) == sizeof yes;
    close(ready[0]);
    if (!serving)
        throw std::runtime_error("the server does not start");
    return server;
}

void callOnce(Registers::Stub& stub, int words) {
    ReadRequest request;
    request.set_handle(1);
    for (int i = 0; i < words; ++i)
        request.add_addresses(0x03010020);
    ReadReply reply;
    grpc::ClientContext context;
    const grpc::Status status = stub.Read(&context, request, &reply);
    if (!status.ok() || reply.data_size() != words)
        throw std::runtime_error("a call failed: " + status.error_message());
}

void measure(Registers::Stub& stub, const char* name, int words, int rounds) {
    using Clock = std::chrono::steady_clock;
    using Microseconds = std::chrono::duration<double, std::micro>;
    std::vector<double> times;
    callOnce(stub, words);
    for (int round = 0; round < rounds; ++round) {
        const auto start = Clock::now();
        for (int i = 0; i < kBatch; ++i)
            callOnce(stub, words);
        times.push_back(Microseconds(Clock::now() - start).count() / kBatch);
    }
    std::printf("%s\n", nlohmann::json{{"name", name}, {"microseconds", times}}.dump().c_str());
}

} // namespace

int main(int argc, char** argv) {
    try {
        const int rounds = argc > 1 ? std::max(1, std::stoi(argv[1])) : 201;
        OrvaneSim::PrivateNetwork::enter({});
        const pid_t server = startServer();
        OrvaneBench::keepToProcessorsOf(OrvaneBench::Side::Host);
        const auto stub =
            Registers::NewStub(grpc::CreateChannel(kServer, grpc::InsecureChannelCredentials()));
        measure(*stub, "gRPC unary call, 1 word", 1, rounds);
        measure(*stub, "gRPC unary call, 873 words", 873, rounds);
        kill(server, SIGKILL);
        waitpid(server, nullptr, 0);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "bench_grpc: %s\n", problem.what());
        return 1;
    }
}

// How a client gets, replaces and drops its handle.
#include "ov_sys/Interface/connection/RPCClient.h"

#include "ov_sys/Interface/connection/RPCHandle.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"
#include "ov_sys/Interface/foundation/Stopwatch.h"

#include <exception>
#include <system_error>
#include <utility>

namespace Orvane {
namespace {

constexpr timeval kDefaultTimeout{2, 0};

// What clnt_spcreateerror("") says of this thread's last failed creation; that one answers in a buffer which
// all threads share.
std::string createErrorText() {
    const auto& failure = rpc_createerr;
    const std::string text = std::string(": ") + clnt_sperrno(failure.cf_stat);
    if (failure.cf_stat != RPC_SYSTEMERROR)
        return text;
    return text + " - " + std::generic_category().message(failure.cf_error.re_errno);
}

} // namespace

RPCClient::RPCClient(unsigned long program_, unsigned long version_, std::string protocol_, std::string name_,
                     std::string host_)
    : client(nullptr),
      protocol(std::move(protocol_)),
      version(version_),
      program(program_),
      name(std::move(name_)),
      timeout(kDefaultTimeout),
      host(std::move(host_)) {}

RPCClient::~RPCClient() {
    RPCClient::reset();
}

void RPCClient::connect() {
    const std::string target = currentHost();
    std::shared_ptr<RPCHandle> created = RPCHandle::create(target, program, version, protocol);
    const bool connected = created != nullptr;
    {
        const std::lock_guard<std::mutex> lock(handleMutex);
        if (host == target) { // otherwise another thread has pointed the client elsewhere meanwhile
            handle_.swap(created);
            client = connected ? handle_->get() : nullptr;
        }
    }
    if (!connected) {
        const clnt_stat status = rpc_createerr.cf_stat;
        Diagnostics::error(createErrorText());
        Diagnostics::error(clnt_sperrno(status));
        Diagnostics::error("Client ", name, " create error: ", static_cast<int>(status));
        connectionError();
    }
    resetTimeout();
}

void RPCClient::update() {
    reconnect(nullptr);
}

void RPCClient::update(std::string newHost) {
    reconnect(&newHost);
}

void RPCClient::reconnect(const std::string* newHost) {
    try {
        reset();
        if (newHost != nullptr) {
            const std::lock_guard<std::mutex> lock(handleMutex);
            host = *newHost;
        }
        connect();
    } catch (const std::exception& problem) {
        Diagnostics::error("Error when updating client: ", name, " : ", problem.what());
        reset();
        throw;
    }
}

void RPCClient::reset() {
    const std::lock_guard<std::mutex> lock(handleMutex);
    client = nullptr;
    handle_.reset();
}

void RPCClient::setTimeout(long seconds, long microseconds) {
    const std::lock_guard<std::mutex> lock(handleMutex);
    if (!handle_)
        return;
    timeout = {seconds, microseconds};
    handle_->setTimeout(timeout);
}

void RPCClient::resetTimeout() {
    setTimeout(kDefaultTimeout.tv_sec, kDefaultTimeout.tv_usec);
}

void RPCClient::setBusy(bool) {}

bool RPCClient::isBusy() {
    return false;
}

bool RPCClient::connectionError() {
    Diagnostics::error("Error connecting to rpc program ", name, " from: ", currentHost(), "\n  ");
    return false;
}

std::shared_ptr<RPCHandle> RPCClient::pin() {
    const std::lock_guard<std::mutex> lock(handleMutex);
    return handle_;
}

std::string RPCClient::currentHost() {
    const std::lock_guard<std::mutex> lock(handleMutex);
    return host;
}

NormalRPCClient::NormalRPCClient(unsigned long program_, unsigned long version_, std::string protocol_,
                                 std::string name_, std::string host_)
    : RPCClient(program_, version_, std::move(protocol_), std::move(name_), std::move(host_)) {
    if (!host.empty())
        connect();
}

ThreadSafeRPCClient::ThreadSafeRPCClient(unsigned long program_, unsigned long version_,
                                         std::string protocol_, std::string name_, std::string host_)
    : NormalRPCClient(program_, version_, std::move(protocol_), std::move(name_), std::move(host_)),
      busy(false) {}

void ThreadSafeRPCClient::reset() {
    constexpr unsigned kPatienceMs = 5000;
    if (!waitClientBusy(kPatienceMs))
        Diagnostics::error("Error!!! KeepAlive thread is busy. Reseting anyway...");
    RPCClient::reset();
}

void ThreadSafeRPCClient::setBusy(bool newBusy) {
    const std::lock_guard<std::mutex> lock(busyMutex);
    busy = newBusy;
}

bool ThreadSafeRPCClient::isBusy() {
    return busy;
}

bool ThreadSafeRPCClient::waitClientBusy(unsigned timeoutMs) {
    const Stopwatch stopwatch;
    while (timeoutMs != 0 && isBusy()) {
        HWIHelper::mSleep(200);
        if (timeoutMs <= stopwatch.scaledElapsed())
            break;
    }
    return !isBusy();
}

ExtendedRPCClient::ExtendedRPCClient(unsigned long program_, unsigned long version_, std::string protocol_,
                                     std::string name_, std::string host_)
    : RPCClient(program_, version_, std::move(protocol_), std::move(name_), std::move(host_)) {}

bool ExtendedRPCClient::connectionError() {
    return true;
}

} // namespace Orvane

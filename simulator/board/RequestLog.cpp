// The ring of requests and waiting for one.
#include "simulator/board/RequestLog.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <utility>

namespace OrvaneSim {
namespace {

constexpr std::size_t kMostBytes = std::size_t{32} << 20;

} // namespace

void RequestLog::trim() {
    while (entries_.size() > mostEntries_ || bytes_ > kMostBytes) {
        bytes_ -= entries_.front().arguments.size();
        entries_.pop_front();
        ++firstNumber_;
    }
}

void RequestLog::add(Entry entry) {
    const std::lock_guard<std::mutex> lock(mutex_);
    bytes_ += entry.arguments.size();
    entries_.push_back(std::move(entry));
    trim();
    arrived_.notify_all();
}

void RequestLog::keep(std::size_t entries) {
    const std::lock_guard<std::mutex> lock(mutex_);
    mostEntries_ = entries;
    trim();
}

Request RequestLog::expand(const Entry& entry) {
    Request request;
    request.program = entry.program->name;
    request.procedure = entry.procedure->name;
    request.programNumber = entry.program->number;
    request.version = entry.program->version;
    request.procedureNumber = entry.procedure->number;
    request.transport = entry.overTcp ? "tcp" : "udp";
    request.bytes = entry.arguments;
    request.describe = entry.procedure->handler.describe;
    return request;
}

std::vector<Request> RequestLog::since(std::uint64_t number, std::uint64_t& next) const {
    std::vector<Request> requests;
    const std::uint64_t skipped = std::max(number, firstNumber_) - firstNumber_;
    for (std::size_t i = skipped; i < entries_.size(); ++i)
        requests.push_back(expand(entries_[i]));
    next = firstNumber_ + entries_.size();
    return requests;
}

std::vector<Request> RequestLog::select(const std::function<bool(const Request&)>& wanted) const {
    std::vector<Request> requests;
    std::uint64_t next = 0;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        requests = since(0, next);
    }
    requests.erase(
        std::remove_if(requests.begin(), requests.end(), [&](const Request& r) { return !wanted(r); }),
        requests.end());
    return requests;
}

std::string RequestLog::summary() const {
    std::map<std::string, std::size_t> counts;
    for (const Entry& entry : entries_)
        ++counts[entry.procedure->name];
    std::string text = counts.empty() ? " none came" : "";
    for (const auto& [procedure, count] : counts)
        text += " " + procedure + " x" + std::to_string(count);
    return text;
}

Request RequestLog::waitFor(const std::function<bool(const Request&)>& wanted,
                            std::chrono::milliseconds limit) const {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    std::uint64_t next = 0;
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        const std::vector<Request> fresh = since(next, next);
        lock.unlock();
        const auto found = std::find_if(fresh.begin(), fresh.end(), wanted);
        if (found != fresh.end())
            return *found;
        lock.lock();
        const bool more =
            arrived_.wait_until(lock, deadline, [&] { return firstNumber_ + entries_.size() > next; });
        if (!more)
            throw std::runtime_error("the request that was waited for did not come; recorded:" + summary());
    }
}

void RequestLog::clear() {
    const std::lock_guard<std::mutex> lock(mutex_);
    firstNumber_ += entries_.size();
    entries_.clear();
    bytes_ = 0;
}

} // namespace OrvaneSim

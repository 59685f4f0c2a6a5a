// Work on many boards by a few threads, and its failures.
#include "tools/orvane/board/Places.h"

#include "tools/orvane/board/DeviceNames.h"
#include "tools/orvane/board/Failures.h"
#include "tools/orvane/board/Identifier.h"
#include "tools/orvane/output/Progress.h"
#include "tools/orvane/output/Record.h"
#include "tools/orvane/output/RecordSink.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <fmt/format.h>
#include <mutex>
#include <thread>
#include <utility>

namespace OrvaneTool {
namespace {

constexpr const char* kEveryPhy = "*";
constexpr unsigned kLastMdioPhy = 31;
constexpr unsigned kFirstSmbusPhy = 0x03; // those around are reserved
constexpr unsigned kLastSmbusPhy = 0x77;
constexpr unsigned kFirstSmbusPort = 10;

// Hands out lists of places to threads, and tells how far they are.
class Crew {
public:
    Crew(std::vector<std::vector<std::size_t>> jobs, std::function<void(std::size_t)> work)
        : jobs_(std::move(jobs)), work_(std::move(work)) {}

    // `told` is called on this thread with the number of places done, from time to time.
    void run(std::size_t threads, const std::function<void(std::size_t)>& told) {
        constexpr std::chrono::milliseconds kPace{100};
        std::vector<std::thread> crew;
        for (std::size_t i = 0; i < std::min(threads, jobs_.size()); ++i)
            crew.emplace_back([this] { take(); });
        std::unique_lock<std::mutex> lock(mutex_);
        while (!ended_.wait_for(lock, kPace, [this] { return jobsDone_ == jobs_.size(); })) {
            lock.unlock();
            told(placesDone_);
            lock.lock();
        }
        lock.unlock();
        for (std::thread& each : crew)
            each.join();
    }

private:
    void take() {
        for (std::size_t job = next_++; job < jobs_.size(); job = next_++) {
            for (const std::size_t place : jobs_[job]) {
                work_(place);
                ++placesDone_;
            }
            const std::lock_guard<std::mutex> lock(mutex_);
            if (++jobsDone_ == jobs_.size())
                ended_.notify_all();
        }
    }

    const std::vector<std::vector<std::size_t>> jobs_;
    const std::function<void(std::size_t)> work_;
    std::atomic<std::size_t> next_{0};
    std::atomic<std::size_t> placesDone_{0};
    std::mutex mutex_; // guards jobsDone_
    std::condition_variable ended_;
    std::size_t jobsDone_ = 0;
};

// Refuses what no port of that kind has, without asking the board.
void checkPhys(const std::string& name, const std::vector<unsigned>& phys) {
    if (isPattern(name) || takenApart(name).port >= kFirstSmbusPort)
        return;
    for (const unsigned phy : phys)
        if (phy > kLastMdioPhy)
            throw UsageError(
                fmt::format("{} has no PHY {}: those of an MDIO port are 0 to {}", name, phy, kLastMdioPhy));
}

std::vector<unsigned> possiblePhys(const Target& target) {
    std::vector<unsigned> phys;
    const unsigned last = target.isSmbus() ? kLastSmbusPhy : kLastMdioPhy;
    for (unsigned phy = target.isSmbus() ? kFirstSmbusPhy : 0; phy <= last; ++phy)
        phys.push_back(phy);
    return phys;
}

// The failure of a place as a record.
Record failureOf(const Target& target, unsigned phy, const std::exception_ptr& problem) {
    Record record("failure");
    record.device(target.name);
    if (!target.problem)
        record.phy(phy);
    try {
        std::rethrow_exception(problem);
    } catch (const Orvane::Failure& failure) {
        return record.error(recordError(failure, textOf(failure)));
    } catch (const std::exception& failure) {
        return record.error({"failed", 0, failure.what()});
    }
}

} // namespace

Places::Places(Context& context, const std::string& devices, const std::string& phys, unsigned boardsAtATime)
    : context_(context),
      names_(deviceNames(devices, context.settings().aliases)),
      phys_(phys == kEveryPhy ? std::vector<unsigned>() : phyNumbers(phys)),
      boardsAtATime_(boardsAtATime),
      one_(names_.size() == 1 && phys_.size() == 1 && !isPattern(names_.front())) {
    for (const std::string& name : names_)
        checkPhys(name, phys_);
}

void Places::find() {
    targets_ = findTargets(context_, names_);
    for (std::size_t i = 0; i < targets_.list.size(); ++i) {
        const Target& target = targets_.list[i];
        if (target.problem)
            places_.push_back({i, 0, target.problem});
        else
            for (const unsigned phy : phys_.empty() ? possiblePhys(target) : phys_)
                places_.push_back({i, phy, {}});
    }
    if (phys_.empty())
        leaveOutSilent();
}

void Places::leaveOutSilent() {
    std::vector<char> silent(places_.size()); // written by several threads
    run("scan", [&](std::size_t place, const Orvane::Phy& phy) {
        try {
            silent[place] = identifierIfThere(phy, context_.within()) ? 0 : 1;
        } catch (const Orvane::Failure& failure) {
            if (failure.kind() != Orvane::FailureKind::Refused) // somebody else has it: it is there
                throw;
        }
    });
    std::vector<Place> there;
    for (std::size_t i = 0; i < targets_.list.size(); ++i) {
        const std::size_t before = there.size();
        for (std::size_t place = 0; place < places_.size(); ++place)
            if (places_[place].target == i && silent[place] == 0)
                there.push_back(places_[place]);
        if (there.size() > before)
            continue;
        targets_.list[i].problem = std::make_exception_ptr(Failure("no PHY answers"));
        there.push_back({i, 0, targets_.list[i].problem});
    }
    places_ = std::move(there);
}

std::vector<std::vector<std::size_t>> Places::goodByPort() const {
    std::vector<std::vector<std::size_t>> ports(targets_.list.size());
    for (std::size_t i = 0; i < places_.size(); ++i)
        if (isGood(i))
            ports[places_[i].target].push_back(i);
    ports.erase(std::remove_if(ports.begin(), ports.end(), [](const auto& list) { return list.empty(); }),
                ports.end());
    return ports;
}

void Places::runOne(std::size_t place, const Work& work) noexcept {
    Place& here = places_[place];
    try {
        context_.interrupts().check();
        work(place, targets_.list[here.target].port->phy(here.phy));
    } catch (...) {
        here.problem = std::current_exception();
    }
}

void Places::run(const char* verb, const Work& work) {
    const auto ports = goodByPort();
    if (ports.size() == 1 && ports.front().size() == 1) {
        runOne(ports.front().front(), work);
    } else {
        std::size_t all = 0;
        for (const auto& each : ports)
            all += each.size();
        ProgressBar bar(context_.console.err, verb, all);
        Crew(ports, [&](std::size_t place) {
            runOne(place, work);
        }).run(boardsAtATime_, [&](std::size_t done) { bar.show(done); });
    }
    context_.interrupts().check();
}

int Places::finish(const char* verb) {
    if (one_ && !isGood(0))
        std::rethrow_exception(places_.front().problem);
    const auto cause = [](const std::string& device, const std::exception_ptr& problem) {
        const std::string text = textOf(problem);
        return text.rfind(device + ": ", 0) == 0 ? text.substr(device.size() + 2) : text;
    };
    Table table({{"", "DEVICE"}, {"", "PHY", true}, {"", "FAILURE"}});
    for (const Place& place : places_) {
        if (!place.problem)
            continue;
        const Target& target = targets_.list[place.target];
        table.add({target.name, target.problem ? "" : std::to_string(place.phy),
                   cause(target.name, place.problem)});
        if (context_.format() != Format::Text)
            context_.records({}).put(failureOf(target, place.phy, place.problem));
    }
    Stream& err = context_.console.err;
    if (!targets_.doubt.empty())
        err.print("orvane: {}: there may be more devices: {}\n", verb, targets_.doubt);
    if (table.size() > 0) {
        context_.endRecords();
        context_.console.out.flush();
        err.print("orvane: {}: {} of {} failed\n", verb, table.size(), places_.size());
        table.print(err);
    }
    err.flushIfPossible();
    return table.size() == 0 && targets_.doubt.empty() ? kSuccess : kFailed;
}

} // namespace OrvaneTool

// Sessions closed side by side, by helper threads that share them out.
#include "ov_sys/Interface/devices/SessionClosing.h"

#include "ov_sys/Interface/foundation/Threads.h"
#include "ov_sys/Interface/sessions/PhySession.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

namespace Orvane {
namespace {

void closeOne(const SimpleSessionEntry& entry) noexcept {
    if (!entry.session)
        return;
    entry.session->close();
    entry.session->abandon(); // its destructor does not tell the board again
}

// The sessions of a list, which any number of threads close together.
class ClosingJob {
public:
    // Throws std::bad_alloc.
    explicit ClosingJob(const SharedSessions& sessions) : sessions_(sessions), turns_(sessions.size()) {
        std::unordered_map<std::string, std::size_t> latest;
        for (std::size_t i = 0; i < sessions.size(); ++i) {
            if (!sessions[i]->session)
                continue;
            const auto [before, isFirst] = latest.try_emplace(sessions[i]->session->name(), i);
            if (!isFirst)
                turns_[i].before = &turns_[std::exchange(before->second, i)];
        }
    }

    // Returns when there is no session left that no other thread closes.
    void work() {
        for (std::size_t i = next_++; i < sessions_.size(); i = next_++) {
            awaitTurn(turns_[i]);
            closeOne(*sessions_[i]);
            const std::lock_guard<std::mutex> lock(mutex_);
            turns_[i].done = true;
            oneIsDone_.notify_all();
        }
    }

private:
    struct Turn {
        const Turn* before = nullptr; // the board's session that is to be closed first
        bool done = false;
    };

    void awaitTurn(const Turn& turn) {
        constexpr std::chrono::milliseconds kPatience{100};
        std::unique_lock<std::mutex> lock(mutex_);
        oneIsDone_.wait_for(lock, kPatience, [&] { return turn.before == nullptr || turn.before->done; });
    }

    const SharedSessions& sessions_;
    std::vector<Turn> turns_;
    std::atomic<std::size_t> next_{0};
    std::mutex mutex_; // guards Turn::done
    std::condition_variable oneIsDone_;
};

void* workOn(void* job) {
    static_cast<ClosingJob*>(job)->work();
    return nullptr;
}

// Does the job on this thread and others; on this one alone where there are no others to be had.
void share(ClosingJob& job, std::size_t sessions) {
    constexpr std::size_t kMostThreads = 64;
    std::array<thread_id_t, kMostThreads - 1> helpers{};
    const std::size_t wanted = std::min(sessions, kMostThreads) - 1;
    std::size_t started = 0;
    while (started < wanted && (helpers[started] = create_thread(workOn, &job)).status == 0)
        ++started;
    job.work();
    std::for_each_n(helpers.begin(), started, thread_join);
}

} // namespace

void closeSideBySide(const SharedSessions& sessions) noexcept {
    for (const auto& entry : sessions)
        if (entry->session)
            entry->session->askToClose();
    if (sessions.size() > 1) {
        try {
            ClosingJob job(sessions);
            return share(job, sessions.size());
        } catch (const std::exception&) { // no memory: one after the other, then
        }
    }
    for (const auto& entry : sessions)
        closeOne(*entry);
}

} // namespace Orvane

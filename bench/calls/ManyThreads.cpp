// Sixteen threads that read at a time, on as many boards or all on one.
#include "bench/calls/BareClient.h"
#include "bench/calls/Measure.h"
#include "bench/calls/Session.h"

#include "ov_sys/Interface/buses/MDIO.h"

#include <memory>
#include <thread>

namespace OrvaneBench {
namespace {

constexpr std::size_t kThreads = 16;
constexpr std::size_t kReads = 40; // of each thread

template <class Read>
std::function<void()> onThreads(Read read) {
    return [read] {
        std::vector<std::thread> threads;
        for (std::size_t thread = 0; thread < kThreads; ++thread)
            threads.emplace_back([read, thread] {
                for (std::size_t i = 0; i < kReads; ++i)
                    read(thread);
            });
        for (std::thread& thread : threads)
            thread.join();
    };
}

} // namespace

void compareThreadsOnBoards(const Arrangement& arrangement) {
    std::vector<std::unique_ptr<OpenedSession>> sessions;
    std::vector<std::unique_ptr<BareHandles>> handles;
    std::vector<std::unique_ptr<BareSession>> bare;
    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        sessions.push_back(std::make_unique<OpenedSession>(arrangement.boards.at(thread)));
        handles.push_back(std::make_unique<BareHandles>(arrangement.boards.at(thread)));
        bare.push_back(std::make_unique<BareSession>(*handles.back()));
    }
    comparePair({"16 threads on 16 boards", kThreads * kReads,
                 onThreads([&](std::size_t n) { Orvane::mdio.read(sessions[n]->get(), kAddress); }),
                 onThreads([&](std::size_t n) { bare[n]->read(kAddress); })},
                arrangement.rounds);
}

void compareThreadsOnOneBoard(const Arrangement& arrangement) {
    OpenedSession session(arrangement.boards.front());
    BareHandles handles(arrangement.boards.front());
    BareSession bare(handles);
    comparePair({"16 threads on one board", kThreads * kReads,
                 onThreads([&](std::size_t) { Orvane::mdio.read(session.get(), kAddress); }),
                 onThreads([&](std::size_t) { bare.readShared(kAddress); })},
                arrangement.rounds);
}

} // namespace OrvaneBench

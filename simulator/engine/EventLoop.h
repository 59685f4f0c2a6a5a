// The one thread that serves every board: descriptors, timers and tasks from other threads.
#pragma once

#include "ov_sys/Interface/foundation/DatagramTrain.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace OrvaneSim {

// An epoll loop on a thread of its own. `post`, `call` and `stop` may be used from any thread, everything
// else only on the loop's thread. No call-back may block.
class EventLoop {
public:
    using Clock = std::chrono::steady_clock;
    using Task = std::function<void()>;
    // Held by an object for as long as its timers may run.
    using Life = std::shared_ptr<const char>;
    static Life makeLife() { return std::make_shared<const char>(); }
    // Receives the epoll events that are ready.
    using Ready = std::function<void(std::uint32_t events)>;

    // Starts the thread. `prologue` runs first on it; what it throws comes out of the constructor, as does
    // std::system_error when the kernel gives no descriptor.
    explicit EventLoop(const Task& prologue = nullptr);
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    // Ends the thread after the tasks posted so far; a second call does nothing. Not from the loop's thread.
    void stop();

    // Runs `task` on the loop's thread as soon as it is free. False, and the task dropped, after `stop`.
    bool post(Task task);

    // Whether the caller is on the loop's thread.
    bool isHere() const { return std::this_thread::get_id() == thread_.get_id(); }

    // Runs `work` on the loop's thread, waits, and returns (or throws) what it returned (or threw). On the
    // loop's thread itself it just runs. Throws std::logic_error after `stop`.
    template <class Work>
    std::invoke_result_t<Work> call(Work work) {
        if constexpr (std::is_void_v<std::invoke_result_t<Work>>) {
            runThere(std::ref(work));
        } else {
            std::optional<std::invoke_result_t<Work>> result;
            runThere([&] { result.emplace(work()); });
            return std::move(*result);
        }
    }

    // Keeps a descriptor watched for as long as it lives. The descriptor must stay open meanwhile.
    class Watch {
    public:
        Watch() = default;
        Watch(Watch&& other) noexcept { *this = std::move(other); }
        Watch& operator=(Watch&& other) noexcept;
        ~Watch();
        // Replaces the epoll events that are waited for.
        void setEvents(std::uint32_t events);

    private:
        friend class EventLoop;
        EventLoop* loop_ = nullptr;
        int fd_ = -1;
        std::uint64_t token_ = 0;
    };

    // Calls `ready` whenever one of `events` (EPOLLIN, EPOLLOUT) is there on `fd`, level-triggered. Throws
    // std::system_error when the kernel refuses.
    [[nodiscard]] Watch watch(int fd, std::uint32_t events, Ready ready);

    // Runs `task` once after `delay`, unless the loop stops or the last owner of `life` goes first.
    void after(Clock::duration delay, const Life& life, Task task);

    // Scratch room of 64 KiB for the datagram or the piece of a stream that is being received.
    std::vector<char>& scratch() { return scratch_; }

    // For datagrams that are received, and sent, before the loop's thread does anything else.
    Orvane::ArrivedTrain& arrivals() { return arrivals_; }
    Orvane::DatagramTrain& departures() { return departures_; }

    // Whether a task or a timer waits for the end of the call-back that runs.
    bool isWanted();

private:
    struct Slot {
        std::uint32_t generation = 0;
        std::shared_ptr<Ready> ready; // shared: a call-back may end its own watch while it runs
    };

    struct Timer {
        std::weak_ptr<const char> life;
        Task task;
    };

    void run();
    void runThere(const Task& work);
    void dispatch(std::uint64_t token, std::uint32_t events);
    void unwatch(int fd, std::uint64_t token);
    void runTasks();
    void runTimers();
    int millisecondsToNextTimer() const;
    void wake();

    Orvane::FileDescriptor epoll_;
    Orvane::FileDescriptor wakeUp_;
    std::vector<Slot> slots_;
    std::vector<std::uint32_t> freeSlots_;
    std::multimap<Clock::time_point, Timer> timers_;
    Orvane::ArrivedTrain arrivals_;
    Orvane::DatagramTrain departures_;
    std::vector<char> scratch_;
    std::mutex tasksMutex_; // guards tasks_ and stopping_
    std::vector<Task> tasks_;
    bool stopping_ = false;
    std::thread thread_;
};

} // namespace OrvaneSim

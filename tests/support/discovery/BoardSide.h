// Boards of a test's own making on the board side of the private network: they answer as the test says.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace OrvaneTest {

class BoardSide {
public:
    struct Reply {
        std::string address; // 10.83.0.1 to 10.83.127.254
        std::string text;
    };
    // The replies to the request that is the `number`th, counted from 1. Runs on a thread of its own.
    using Answer = std::function<std::vector<Reply>(int number)>;

    explicit BoardSide(Answer answer);
    BoardSide(const BoardSide&) = delete;
    BoardSide& operator=(const BoardSide&) = delete;
    ~BoardSide();

    // The requests that were sent from the host side up to now, in order.
    std::vector<std::string> requests();

private:
    void openSocket();
    void serve();
    void handle(const std::string& text, unsigned requester);

    Answer answer_;
    Orvane::FileDescriptor socket_;
    std::mutex lock_; // guards the members below
    std::condition_variable changed_;
    std::vector<std::string> requests_;
    int sentMarks_ = 0;
    int seenMark_ = 0;
    std::thread thread_;
};

} // namespace OrvaneTest

// A rack that knows one simulated board, for tests of what it does to it.
#pragma once

#include "ov_sys/rack/Rack.h"
#include "tests/support/OneBoard.h"

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <optional>
#include <orvane/lab_json.h>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace OrvaneTest {

using OrvaneSim::Fault;
using OrvaneSim::Request;
using OrvaneSim::Space;
using namespace std::chrono_literals;

// Port 1 of board7, whose PHY 3 the tests use; nothing is sent before they do.
struct RackOnBoard : OneBoard {
    Orvane::Rack rack;
    Orvane::Phy phy;

    explicit RackOnBoard(Orvane::Access access = Orvane::Access::simple())
        : phy((rack.know(kBoardSerial, board.address()), rack.open("board7:1", access).phy(3))) {}

    // The Failure that `action` throws; none counts as a failure of the test, and so does one with a code
    // that nobody can have said.
    template <class Action>
    static Orvane::Failure failureOf(Action action) {
        try {
            action();
        } catch (const Orvane::Failure& failure) {
            EXPECT_TRUE(failure.code() == 0 || mayHaveCode(failure.kind())) << failure.what();
            return failure;
        }
        ADD_FAILURE() << "nothing was thrown";
        return Orvane::Failure({});
    }

    // Whether boards or systems give a code for failures of that kind.
    static bool mayHaveCode(Orvane::FailureKind kind) {
        using Kind = Orvane::FailureKind;
        return kind == Kind::BoardError || kind == Kind::Busy || kind == Kind::Refused ||
               kind == Kind::LostSession || kind == Kind::Unreachable;
    }

    // Procedures that the board was asked for, port mapper left out.
    std::vector<std::string> procedures() const {
        std::vector<std::string> names;
        for (const Request& request : board.requests())
            names.push_back(request.procedure);
        return names;
    }
};

// The events of a rack, as they come.
class Events {
public:
    explicit Events(Orvane::Rack& rack) : rack_(rack) {
        rack.onEvent([this](const Orvane::Event& event) {
            const std::lock_guard<std::mutex> lock(mutex_);
            kinds_.push_back(event.kind);
            told_.notify_all();
        });
    }
    ~Events() { rack_.onEvent({}); }

    // Whether an event of that kind has come, or does so within 10 s.
    bool waitFor(Orvane::Event::Kind kind) {
        std::unique_lock<std::mutex> lock(mutex_);
        return told_.wait_for(lock, 10s,
                              [&] { return std::find(kinds_.begin(), kinds_.end(), kind) != kinds_.end(); });
    }

    // Whether one has come.
    bool came(Orvane::Event::Kind kind) {
        const std::lock_guard<std::mutex> lock(mutex_);
        return std::find(kinds_.begin(), kinds_.end(), kind) != kinds_.end();
    }

private:
    Orvane::Rack& rack_;
    std::mutex mutex_; // guards kinds_
    std::condition_variable told_;
    std::vector<Orvane::Event::Kind> kinds_;
};

} // namespace OrvaneTest

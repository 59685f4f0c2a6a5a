// That a callback which was taken away runs no more.
#include "ov_sys/rack/core/EventQueue.h"

#include <future>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace OrvaneTest {
namespace {

using namespace std::chrono_literals;
using Orvane::Event;
using Orvane::RackCore::EventQueue;

Event named(const char* text) {
    Event event;
    event.text = text;
    return event;
}

TEST(EventQueue, WaitsForACallbackThatRunsBeforeItIsTakenAway) {
    EventQueue queue;
    std::promise<void> runs;
    std::promise<void> goOn;
    queue.setCallback([&](const Event&) {
        runs.set_value();
        goOn.get_future().wait();
    });
    queue.push(named("one"));
    std::thread thread([&] { queue.deliver(); });
    runs.get_future().wait();
    auto cleared = std::async(std::launch::async, [&] { queue.setCallback({}); });
    EXPECT_EQ(cleared.wait_for(50ms), std::future_status::timeout);
    goOn.set_value();
    EXPECT_EQ(cleared.wait_for(10s), std::future_status::ready);
    thread.join();
}

TEST(EventQueue, CallbackMayTakeItselfAwayAndIsNotCalledAgain) {
    EventQueue queue;
    std::vector<std::string> told;
    queue.setCallback([&](const Event& event) {
        told.push_back(event.text);
        queue.setCallback({});
    });
    queue.push(named("one"));
    queue.push(named("two"));
    queue.deliver();
    EXPECT_EQ(told, std::vector<std::string>{"one"});
    EXPECT_FALSE(queue.push(named("three")));
}

TEST(EventQueue, EventsThatWaitAreForTheNewCallback) {
    EventQueue queue;
    std::vector<std::string> told;
    queue.setCallback([](const Event&) { FAIL(); });
    queue.push(named("one"));
    queue.setCallback([&](const Event& event) { told.push_back(event.text); });
    queue.push(named("two"));
    queue.deliver();
    EXPECT_EQ(told, (std::vector<std::string>{"one", "two"}));
}

} // namespace
} // namespace OrvaneTest

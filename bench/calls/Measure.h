// How a measurement is made, and how bench/compare is told of it.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace OrvaneBench {

// Where the boards are and how long to measure.
struct Arrangement {
    std::vector<std::string> boards; // addresses
    int rounds = 0;
};

// What this process has used and holds so far.
double processorSeconds();
double residentKilobytes();

// The same work done by the library and by bare libtirpc calls, or in another way that the name says. Each
// function does `operations` operations.
struct Pair {
    std::string name;
    std::size_t operations;
    std::function<void()> ours;
    std::function<void()> bare;
};

double secondsOf(const std::function<void()>& work);

// Runs both sides by turns, once each unmeasured, and reports the nanoseconds of an operation for each round.
void comparePair(const Pair& pair, int rounds);

// Reports one line of JSON: the name and what is in `content`.
void report(const std::string& name, nlohmann::json content);

// Runs the work in a process of its own, whose memory and processor time are nobody else's, and reports what
// it returns under its name. Throws std::runtime_error when it fails.
struct ChildWork {
    std::string name;
    std::function<nlohmann::json()> run;
};
void reportFromChild(const ChildWork& work);

// The measurements by name, each taken by one function.
struct Measurement {
    const char* name;
    void (*run)(const Arrangement&);
};
void compareClassReads(const Arrangement& arrangement);
void compareFlatReads(const Arrangement& arrangement);
void compareLoggedReads(const Arrangement& arrangement);
void compareBlocks(const Arrangement& arrangement);
void compareFirstReads(const Arrangement& arrangement);
void measureOpening(const Arrangement& arrangement);
void compareThreadsOnBoards(const Arrangement& arrangement);
void compareThreadsOnOneBoard(const Arrangement& arrangement);
void measureIdleSessions(const Arrangement& arrangement);
void measureListener(const Arrangement& arrangement);
void compareRackReads(const Arrangement& arrangement);
void compareRackBlocks(const Arrangement& arrangement);
void compareFlightsOverBoards(const Arrangement& arrangement);
void compareBlocksInFlight(const Arrangement& arrangement);
void measureRackOfBoards(const Arrangement& arrangement);

} // namespace OrvaneBench

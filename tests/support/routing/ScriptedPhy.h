// A PHY that answers from a script and writes down what was done with it.
#pragma once

#include "ov_sys/routing/Access.h"

#include <deque>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace OrvaneTest {

// The access that a test has told to fail.
struct Failed : std::runtime_error {
    Failed() : std::runtime_error("failed by the test") {}
};

// Steps read "W 1E.C47F 0000" and "R 1E.C47F 0001", "w 0D 001E" and "r 0E BEEF" by Clause 22, "wait", and
// "trouble KIND CODE ADDRESS" with the kind's number; numbers are hexadecimal.
class ScriptedPhy : public Orvane::Routing::Access {
public:
    // What the reads give, one after the other; beyond them, 0.
    explicit ScriptedPhy(std::deque<unsigned> answers = {}) : answers_(std::move(answers)) {}

    std::vector<std::string> steps;

    enum class Way { GivesNothing, Throws };
    // Lets access number `step`, from 0, fail.
    void failAt(std::size_t step, Way way) {
        failing_ = step;
        way_ = way;
    }
    // Lets waits end when they have been asked so often whether to go on.
    void waitsAtMost(unsigned times) { mostWaits_ = times; }
    // Lets paths end at trouble.
    void endsAtTrouble() { goesOn_ = false; }

    Orvane::Routing::Value read(unsigned mmd, unsigned reg) override;
    bool write(unsigned mmd, unsigned reg, unsigned value) override;
    Orvane::Routing::Value readClause22(unsigned reg) override;
    bool writeClause22(unsigned reg, unsigned value) override;
    bool keepsWaiting() override;
    bool goesOnAfter(const Orvane::Routing::Trouble& trouble) override;

private:
    bool works();
    Orvane::Routing::Value answer(const std::string& step);

    std::deque<unsigned> answers_;
    std::size_t accesses_ = 0;
    std::size_t failing_ = ~std::size_t{0};
    Way way_ = Way::GivesNothing;
    unsigned mostWaits_ = ~0U;
    bool goesOn_ = true;
};

// Takes `path` with every access of it failing in turn, both ways, and expects it to end there, with nothing
// given. `path` returns whether it gave something.
void expectToEndAtEachFailure(const std::deque<unsigned>& answers,
                              const std::function<bool(ScriptedPhy&)>& path);

} // namespace OrvaneTest

// Answers, fails or throws as the script says, and writes each access down.
#include "tests/support/routing/ScriptedPhy.h"

#include <cstdio>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::Routing::Value;

std::string hex(unsigned number, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, number);
    return text;
}

std::string place(unsigned mmd, unsigned reg) {
    return hex(mmd, 2) + "." + hex(reg, 4);
}

} // namespace

bool ScriptedPhy::works() {
    if (accesses_++ != failing_)
        return true;
    if (way_ == Way::Throws)
        throw Failed();
    return false;
}

Value ScriptedPhy::answer(const std::string& step) {
    if (!works())
        return std::nullopt;
    const unsigned value = answers_.empty() ? 0 : answers_.front();
    if (!answers_.empty())
        answers_.pop_front();
    steps.push_back(step + " " + hex(value, 4));
    return value;
}

Value ScriptedPhy::read(unsigned mmd, unsigned reg) {
    return answer("R " + place(mmd, reg));
}

bool ScriptedPhy::write(unsigned mmd, unsigned reg, unsigned value) {
    const bool done = works();
    if (done)
        steps.push_back("W " + place(mmd, reg) + " " + hex(value, 4));
    return done;
}

Value ScriptedPhy::readClause22(unsigned reg) {
    return answer("r " + hex(reg, 2));
}

bool ScriptedPhy::writeClause22(unsigned reg, unsigned value) {
    const bool done = works();
    if (done)
        steps.push_back("w " + hex(reg, 2) + " " + hex(value, 4));
    return done;
}

bool ScriptedPhy::keepsWaiting() {
    if (mostWaits_ == 0)
        return false;
    --mostWaits_;
    return true;
}

bool ScriptedPhy::goesOnAfter(const Orvane::Routing::Trouble& trouble) {
    steps.push_back("trouble " + hex(trouble.kind, 1) + " " + hex(trouble.code, 1) + " " +
                    hex(trouble.address, 4));
    return goesOn_;
}

void expectToEndAtEachFailure(const std::deque<unsigned>& answers,
                              const std::function<bool(ScriptedPhy&)>& path) {
    ScriptedPhy good(answers);
    ASSERT_TRUE(path(good));
    for (std::size_t failing = 0; failing < good.steps.size(); ++failing) {
        SCOPED_TRACE(failing);
        const std::vector<std::string> before(good.steps.begin(),
                                              good.steps.begin() + static_cast<std::ptrdiff_t>(failing));
        ScriptedPhy silent(answers);
        silent.failAt(failing, ScriptedPhy::Way::GivesNothing);
        EXPECT_FALSE(path(silent));
        EXPECT_EQ(silent.steps, before);
        ScriptedPhy throwing(answers);
        throwing.failAt(failing, ScriptedPhy::Way::Throws);
        EXPECT_THROW(path(throwing), Failed);
        EXPECT_EQ(throwing.steps, before);
    }
}

} // namespace OrvaneTest

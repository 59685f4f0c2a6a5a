// What the board says no to: opening a session, and keeping one alive.
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/faults/scenarios/Scenario.h"
#include "tests/faults/scenarios/SessionsOnBoards.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>

namespace OrvaneFaults {
namespace {

using OrvaneSim::Fault;
using State = Orvane::PhySession::SessionState_t;

struct Code {
    const char* name;
    int value;
    const char* opening; // what opening ends in
    State keptAlive;     // the session's state after the ping that it answered
};

const std::vector<Code>& codes() {
    static const std::vector<Code> all{
        {"0", 0, "opened", Orvane::PhySession::SESSION_VALID},
        {"-1", -EPERM, "Device is in use or access denied.", Orvane::PhySession::SESSION_INVALID},
        {"-13", -EACCES, "Device is in use or access denied.", Orvane::PhySession::SESSION_INVALID},
        {"-16", -EBUSY, "Error opening connection", Orvane::PhySession::SESSION_VALID},
        {"-28", -ENOSPC, "Device is in use or access denied.", Orvane::PhySession::SESSION_INVALID},
        {"-56", -EBADRQC, "Error opening connection", Orvane::PhySession::SESSION_INVALID},
        {"-110", -ETIMEDOUT, "Error opening connection", Orvane::PhySession::SESSION_VALID},
        {"-5", -EIO, "Error opening connection", Orvane::PhySession::SESSION_INVALID},
        {"7", 7, "Error opening connection", Orvane::PhySession::SESSION_INVALID},
    };
    return all;
}

std::string openOutcome(OrvaneSim::Board& board) {
    try {
        openSession(board.serial(), board.address(), false);
        return "opened";
    } catch (const std::exception& problem) {
        return problem.what();
    }
}

// Waits, within reason, for something that another thread brings about.
template <class Condition>
bool comesTrue(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

std::string stateAfterPing(SessionOnBoard& each, const Code& code) {
    constexpr int kAnswers = 3; // a busy board is asked again at once
    each.board.inject({"keepAlive", "", Fault::Kind::ResultCode, code.value == 0 ? 0 : kAnswers, code.value});
    const auto pings = [&] { return each.board.counts("pingkeepalive").received; };
    const auto before = pings();
    const bool invalid = code.keptAlive == Orvane::PhySession::SESSION_INVALID;
    const bool came = comesTrue([&] {
        return invalid ? !each.session->isValid() : pings() - before > static_cast<std::uint64_t>(kAnswers);
    });
    if (!came)
        return "no ping came";
    return each.session->isValid() ? "goes on" : "session ends";
}

} // namespace

void refusals(Run& run) {
    SessionsOnBoards boards(static_cast<unsigned>(codes().size()), run.seed);
    std::vector<std::string> opened(codes().size());
    std::vector<std::string> kept(codes().size());
    std::vector<double> openMs(codes().size());
    boards.onAll([&](SessionOnBoard& each, unsigned number) {
        const Code& code = codes()[number];
        kept[number] = stateAfterPing(each, code);
        each.board.clearFaults();
        each.reopen();
        constexpr int kTries = 6;
        if (code.value != 0)
            each.board.inject({"setup", "open_connection", Fault::Kind::ResultCode, kTries, code.value});
        const auto start = std::chrono::steady_clock::now();
        opened[number] = openOutcome(each.board);
        openMs[number] =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        run.report.expect(openOutcome(each.board) == "opened", code.name, ": not opened after the refusals");
        run.report.expect(each.calls.read(*each.session), code.name, ": the other session was lost");
    });
    Table table("Refusals by result code",
                {"code", "opening, refused six times", "took", "keep-alive, answered three times"});
    for (std::size_t i = 0; i < codes().size(); ++i) {
        const Code& code = codes()[i];
        const bool ends = code.keptAlive == Orvane::PhySession::SESSION_INVALID;
        run.report.expect(opened[i] == code.opening, code.name, ": opening ended in ", opened[i]);
        run.report.expect(kept[i] == (ends ? "session ends" : "goes on"), code.name,
                          ": of keep-alive came: ", kept[i]);
        table.row(code.name, opened[i], seconds(openMs[i]) + " s", kept[i]);
    }
    run.report.show(table);
}

} // namespace OrvaneFaults

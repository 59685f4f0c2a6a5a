// The characterisation of four boards while they lose messages and restart.
#include "tests/support/RunProgram.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <orvane/lab.h>
#include <orvane/lab_json.h>
#include <string>
#include <vector>

namespace OrvaneTest {
namespace {

using OrvaneSim::argumentsOf;
using OrvaneSim::Fault;

constexpr unsigned kBoards = 4;
constexpr unsigned kSettings = 16;
constexpr int kTemperatures[] = {-40, 25, 85};
constexpr int kAmbient = 25;

// What a board reads depends on the board, on its setting and on its temperature.
unsigned readingOf(unsigned board, int celsius, unsigned setting) {
    return 10000 * (board + 1) + 300 * setting + static_cast<unsigned>(celsius + 60);
}

// Measures when it is told a setting; loses one message in twenty each way; restarts behind a measurement and
// is then as warm as its surroundings.
class MeasuringBoard {
public:
    MeasuringBoard(OrvaneSim::Lab& lab, unsigned number, unsigned restartsAfter)
        : board(lab.add(named(number))), number_(number), restartsAfter_(restartsAfter) {
        for (const Fault::Kind kind : {Fault::Kind::LoseReply, Fault::Kind::LoseRequest}) {
            Fault loss{"mdio", "", kind, -1};
            loss.probability = 0.05;
            board.inject(loss);
        }
        board.onRequest([this](const OrvaneSim::Request& request) { hear(request); });
    }

    OrvaneSim::Board& board;

private:
    static OrvaneSim::BoardOptions named(unsigned number) {
        OrvaneSim::BoardOptions options;
        options.serial = "OV" + std::to_string(number);
        options.seed = number + 1;
        return options;
    }

    // On the lab's thread.
    void hear(const OrvaneSim::Request& request) {
        if (request.procedure == "thrm_settemperature")
            celsius_ = argumentsOf(request)["temperature"].get<int>();
        if (request.procedure != "mdio_mixedblock")
            return;
        const auto setting = argumentsOf(request)["writeData"][0].get<unsigned>();
        board.setRegister(OrvaneSim::Space::C45, 0, 3, 0x1EC011, readingOf(number_, celsius_, setting));
        if (++measurements_ == restartsAfter_) {
            celsius_ = kAmbient;
            board.restart(true);
        }
    }

    const unsigned number_;
    const unsigned restartsAfter_; // 0: never
    unsigned measurements_ = 0;
    int celsius_ = kAmbient;
};

std::string expectedTable() {
    std::string table = "celsius,setting,board,reading\n";
    for (const int celsius : kTemperatures)
        for (unsigned setting = 0; setting < kSettings; ++setting)
            for (unsigned board = 0; board < kBoards; ++board)
                table += std::to_string(celsius) + "," + std::to_string(setting) + "," +
                         std::to_string(board) + "," + std::to_string(readingOf(board, celsius, setting)) +
                         "\n";
    return table;
}

TEST(Characterisation, OfBoardsThatRestartAndLoseMessagesHasEveryValueRight) {
    std::vector<std::unique_ptr<MeasuringBoard>> boards; // outlive the lab, on whose thread they hear
    OrvaneSim::Lab lab;
    for (const unsigned restartsAfter : {0U, 5U, 0U, 40U})
        boards.push_back(std::make_unique<MeasuringBoard>(lab, boards.size(), restartsAfter));

    const ProgramOutcome outcome = runProgram(EXAMPLE);

    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, expectedTable());
    std::vector<std::uint64_t> openings;
    for (const auto& one : boards) {
        openings.push_back(one->board.executions("open_connection"));
        EXPECT_GT(one->board.counts("mdio_mixedblock").faults, 0U);
    }
    EXPECT_EQ(openings, (std::vector<std::uint64_t>{1, 2, 1, 2}));
}

TEST(Characterisation, TakesFortyFiveLinesAtMost) {
    std::ifstream source(SOURCE);
    ASSERT_TRUE(source);
    EXPECT_LE(std::count(std::istreambuf_iterator<char>(source), {}, '\n'), 45);
}

} // namespace
} // namespace OrvaneTest

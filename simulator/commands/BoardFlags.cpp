// From flags to boards.
#include "simulator/commands/BoardFlags.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <stdexcept>

namespace OrvaneSim {
namespace {

constexpr unsigned kMostBoards = 30000;
constexpr std::size_t kSerialDigits = 4;
constexpr std::size_t kLoopedLines = 16; // GPIO lines 0 to 15 are wired to lines 16 to 31

std::string numberedSerial(const std::string& prefix, std::size_t number) {
    const std::string digits = std::to_string(number);
    const std::size_t zeros = kSerialDigits - std::min(kSerialDigits, digits.size());
    return prefix + std::string(zeros, '0') + digits;
}

} // namespace

void BoardFlags::addTo(CLI::App& app) {
    app.add_option("--boards", boards, "Number of boards")
        ->check(CLI::Range(0U, kMostBoards))
        ->capture_default_str();
    app.add_option("--serial-prefix", serialPrefix, "Serial numbers are this and a number from 0001 up")
        ->capture_default_str();
    app.add_option("--address", addresses, "Address of a board; repeat for the next ones")
        ->check(CLI::ValidIPV4);
    app.add_option("--serial", serials, "Serial number of a board; repeat for the next ones");
    app.add_option("--device", devices, "Device name of the only board, such as OV0001:10; may be repeated");
    app.add_option("--first-word", firstWord, "First word of the board names sent in discovery")
        ->capture_default_str();
    app.add_flag("--allow-shell", allowShell, "Run remote commands in a real shell of this machine");
    app.add_option("--seed", seed, "Everything the boards make up follows from this number")
        ->capture_default_str();
}

std::vector<BoardOptions> BoardFlags::options() const {
    const std::size_t count = std::max({std::size_t{boards}, addresses.size(), serials.size()});
    if (!devices.empty() && count != 1)
        throw std::invalid_argument("--device is for a single board");
    std::vector<BoardOptions> list(count);
    for (std::size_t i = 0; i < count; ++i) {
        BoardOptions& board = list[i];
        if (i < addresses.size())
            board.address = addresses[i];
        board.serial = i < serials.size() ? serials[i] : numberedSerial(serialPrefix, i + 1);
        board.devices = devices;
        if (devices.empty())
            board.devices = {board.serial + ":0", board.serial + ":1", board.serial + ":10"};
        board.firstWord = firstWord;
        board.seed = seed + i;
        board.allowShell = allowShell;
    }
    return list;
}

void addAll(Lab& lab, const std::vector<BoardOptions>& boards) {
    for (const BoardOptions& board : boards) {
        try {
            Board& added = lab.add(board);
            for (std::size_t line = 0; line < kLoopedLines; ++line)
                added.wireGpio(line, line + kLoopedLines);
        } catch (const std::exception& problem) {
            throw std::runtime_error("board " + board.serial + ": " + problem.what());
        }
    }
}

} // namespace OrvaneSim

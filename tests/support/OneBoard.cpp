// The board, its record, and what it was asked for.
#include "tests/support/OneBoard.h"

#include <orvane/lab_json.h>

namespace OrvaneTest {
namespace {

OrvaneSim::BoardOptions named(const std::string& serial) {
    OrvaneSim::BoardOptions options;
    options.serial = serial;
    return options;
}

} // namespace

OneBoard::OneBoard(const std::string& serial) : board(lab.add(named(serial))) {}

Orvane::AddressResponse OneBoard::record() const {
    return {board.serial(), board.address()};
}

void OneBoard::inject(OrvaneSim::Fault::Kind kind, const std::string& program, const std::string& procedure,
                      int count, std::int64_t value) {
    board.inject({program, procedure, kind, count, value});
}

std::size_t OneBoard::count(const std::string& procedure) const {
    return board.requestsOf(procedure).size();
}

std::vector<unsigned long> OneBoard::programsLookedUp() const {
    std::vector<unsigned long> programs;
    for (const OrvaneSim::Request& request : board.requestsOf("portmap_getport")) {
        const auto program = argumentsOf(request)["prog"].get<unsigned long>();
        if (programs.empty() || programs.back() != program)
            programs.push_back(program);
    }
    return programs;
}

} // namespace OrvaneTest

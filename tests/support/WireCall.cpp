// Makes recorded requests comparable.
#include "tests/support/WireCall.h"

#include <ios>
#include <utility>

namespace OrvaneTest {
namespace {

const char* transportOf(const std::string& program) {
    return program == "setup" || program == "adc" ? "tcp" : "udp";
}

} // namespace

bool operator==(const WireCall& left, const WireCall& right) {
    return left.program == right.program && left.procedure == right.procedure &&
           left.arguments == right.arguments;
}

std::ostream& operator<<(std::ostream& out, const WireCall& call) {
    return out << std::hex << call.program << std::dec << '/' << call.procedure << ' '
               << call.arguments.dump();
}

WireCall mdioCall(unsigned procedure, nlohmann::ordered_json arguments) {
    return {kMdioProgram, procedure, std::move(arguments)};
}

std::vector<WireCall> wireCalls(const OrvaneSim::Board& board, const std::string& program) {
    std::vector<WireCall> calls;
    for (const OrvaneSim::Request& request : board.requests(program)) {
        const bool usual = request.version == 1 && request.transport == transportOf(request.program);
        calls.push_back({usual ? request.programNumber : 0, request.procedureNumber, argumentsOf(request)});
    }
    return calls;
}

} // namespace OrvaneTest

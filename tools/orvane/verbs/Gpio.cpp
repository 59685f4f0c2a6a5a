// orvane gpio: a board's general-purpose lines.
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/verbs/Verbs.h"

#include <array>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

using Bytes = std::vector<unsigned char>;

Bytes linesOf(const ServiceCall& call) {
    return numbersAs<unsigned char>(call.words(), 255, "the line");
}

// The states of lines: in text in one line, else as the member `name` of a record each.
void putStates(ServiceCall& call, const char* name, const Bytes& lines, const Bytes& states) {
    std::string text;
    for (std::size_t i = 0; i < states.size(); ++i) {
        text += fmt::format("{}{}", text.empty() ? "" : " ", states[i]);
        call.put(call.record("line").put("place", i).put("line", lines.at(i)).put(name, states[i]));
    }
    if (call.isText())
        call.out().print("{}\n", text);
}

void get(ServiceCall& call) {
    const Bytes lines = linesOf(call);
    putStates(call, "level", lines,
              call.attempt([&] { return call.phy().gpio().read(lines, call.within()); }));
}

void outputs(ServiceCall& call) {
    const Bytes lines = linesOf(call);
    putStates(call, "output", lines,
              call.attempt([&] { return call.phy().gpio().outputEnables(lines, call.within()); }));
}

void set(ServiceCall& call) {
    const Pairs pairs = pairsOf(call.words(), false);
    call.attempt([&] { call.phy().gpio().write(pairs.names, pairs.levels, call.within()); });
}

void enable(ServiceCall& call) {
    const Pairs pairs = pairsOf(call.words(), false);
    call.attempt([&] { call.phy().gpio().enableOutput(pairs.names, pairs.levels, call.within()); });
}

void setDefault(ServiceCall& call) {
    const Bytes lines = linesOf(call);
    call.attempt([&] { call.phy().gpio().setDefault(lines, call.within()); });
}

void reset(ServiceCall& call) {
    call.attempt([&] { call.phy().gpio().reset(call.within()); });
}

void bitBang(ServiceCall& call) {
    const Pairs pairs = pairsOf(call.words(), true);
    putStates(call, "level", pairs.names, call.attempt([&] {
        return call.phy().gpio().bitBang(pairs.names, pairs.levels, pairs.lonely, call.once());
    }));
}

void info(ServiceCall& call) {
    constexpr unsigned char kLines = 32;
    Bytes lines;
    for (unsigned char line = 0; line < kLines; ++line)
        lines.push_back(line);
    const Bytes levels = call.attempt([&] { return call.phy().gpio().read(lines, call.within()); });
    const Bytes enabled = call.attempt([&] { return call.phy().gpio().outputEnables(lines, call.within()); });
    for (const unsigned char line : lines) {
        if (call.isText())
            call.out().print("line {:2}: {:6} {}\n", line, enabled[line] != 0 ? "output" : "input",
                             levels[line]);
        call.put(
            call.record("line").put("line", line).put("level", levels[line]).put("output", enabled[line]));
    }
}

constexpr std::array<Operation, 8> kOperations{{
    {"get", "LINE", 1, kAnyNumber, "Print the levels of lines", get, "place line level"},
    {"set", "LINE=LEVEL", 1, kAnyNumber, "Set the levels that output lines show", set},
    {"enable", "LINE=ENABLE", 1, kAnyNumber, "Make lines outputs (1) or inputs (0)", enable},
    {"outputs", "LINE", 1, kAnyNumber, "Print which lines are outputs", outputs, "place line output"},
    {"default", "LINE", 1, kAnyNumber, "Put lines back to their default", setDefault},
    {"reset", "", 0, 0, "Put every line back to its default", reset},
    {"bitbang", "LINE[=LEVEL]", 1, kAnyNumber, "Set and sample lines step by step, in one call", bitBang,
     "place line level"},
    {"info", "", 0, 0, "Show every line", info, "line level output"},
}};

} // namespace

void addGpio(CLI::App& app, Context& context) {
    CLI::App& service =
        addService(app, {"gpio", "Read and set a board's general-purpose lines",
                         "  orvane gpio info OV0001:0\n"
                         "  orvane gpio get OV0001:0 0 16\n"
                         "  orvane gpio enable OV0001:0 0=1\n"
                         "  orvane gpio set OV0001:0 0=1 3=0\n"
                         "  orvane gpio bitbang OV0001:0 0=1 16 0=0 16   a line alone is sampled\n"});
    for (const Operation& operation : kOperations)
        addOperation(service, context, operation);
}

} // namespace OrvaneTool

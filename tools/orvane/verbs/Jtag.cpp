// orvane jtag: a board's JTAG chain.
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/verbs/Verbs.h"

#include <array>
#include <fmt/format.h>
#include <optional>

namespace OrvaneTool {
namespace {

using Orvane::JtagChain;

void requireLevels(const std::string& text) {
    if (text.find_first_not_of("01") != std::string::npos)
        throw UsageError(fmt::format("'{}' is not a row of 0 and 1", text));
}

// What came out of each shift.
void putShifts(ServiceCall& call, const std::vector<std::string>& results) {
    for (std::size_t i = 0; i < results.size(); ++i) {
        call.put(call.record("shift").put("place", i).put("tdo", results[i]));
        if (call.isText())
            call.out().print("{}\n", results[i]);
    }
}

// The identification of a device in the chain; none when it shifts out a single 0 instead.
void putDevice(ServiceCall& call, unsigned place, std::optional<std::uint32_t> code) {
    Record record = call.record("idcode");
    record.put("place", place);
    if (code)
        record.put("idcode", *code);
    call.put(record);
    if (call.isText())
        call.out().write(code ? fmt::format("0x{:08X}\n", *code) : "(a device without identification)\n");
}

void maxBytes(ServiceCall& call) {
    const unsigned bytes = call.attempt([&] { return call.phy().jtag().maxBytes(call.within()); });
    call.put(call.record("limit").put("bytes", bytes));
    if (call.isText())
        call.out().print("{}\n", bytes);
}

void shift(ServiceCall& call) {
    for (const std::string& word : call.words())
        requireLevels(word);
    putShifts(call, {call.attempt([&] {
                  return call.phy().jtag().shift({call.word(0), call.word(1), call.word(2)}, call.once());
              })});
}

// TDI:TMS:TMS-AFTER for each shift.
void shiftMulti(ServiceCall& call) {
    std::vector<JtagChain::Shift> shifts;
    for (const std::string& word : call.words()) {
        std::array<std::string, 3> parts;
        std::size_t begin = 0;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            const std::size_t colon = word.find(':', begin);
            if ((colon == std::string::npos) != (i + 1 == parts.size()))
                throw UsageError(fmt::format("'{}' is not TDI:TMS:AFTER", word));
            parts[i] = word.substr(begin, colon - begin);
            requireLevels(parts[i]);
            begin = colon + 1;
        }
        shifts.push_back({parts[0], parts[1], parts[2]});
    }
    putShifts(call, call.attempt([&] { return call.phy().jtag().shift(shifts, call.once()); }));
}

// After a reset every device shifts out its identification, low bit first, which begins with a 1; ones follow
// the last device, because they are shifted in.
void idCodes(ServiceCall& call) {
    constexpr std::size_t kBits = 32;
    constexpr std::size_t kMostDevices = 16;
    constexpr const char* kToShiftDr = "111110100";
    const std::string ones(kBits * kMostDevices, '1');
    const std::string stay = std::string(ones.size() - 1, '0') + "1";
    const std::vector<std::string> results = call.attempt([&] {
        return call.phy().jtag().shift({{"", kToShiftDr, ""}, {ones, stay, "10"}}, call.once());
    });
    const std::string& bits = results.at(1);
    unsigned device = 0;
    for (std::size_t place = 0; place < bits.size(); ++device) {
        if (bits[place] != '1') {
            putDevice(call, device, std::nullopt);
            ++place;
            continue;
        }
        std::uint32_t code = 0;
        for (std::size_t i = 0; i < kBits && place + i < bits.size(); ++i)
            code |= (bits[place + i] == '1' ? 1U : 0U) << i;
        if (code == 0xFFFFFFFF)
            return;
        putDevice(call, device, code);
        place += kBits;
    }
}

constexpr std::array<Operation, 4> kOperations{{
    {"ids", "", 0, 0, "Print the identifications of the chain's devices", idCodes, "place idcode"},
    {"max", "", 0, 0, "Print the bytes of the longest shift", maxBytes, "bytes"},
    {"shift", "TDI TMS [TMS-AFTER]", 2, 3, "Shift levels and print those of TDO", shift, "place tdo"},
    {"multi", "TDI:TMS:AFTER", 1, kAnyNumber, "Make several shifts in one call", shiftMulti, "place tdo"},
}};

} // namespace

void addJtag(CLI::App& app, Context& context) {
    CLI::App& service =
        addService(app, {"jtag", "Shift through a board's JTAG chain",
                         "  orvane jtag ids OV0001:0\n"
                         "  orvane jtag shift OV0001:0 0000 1111 0      TDI and TMS, low bit first\n"
                         "  orvane jtag multi OV0001:0 :111110100: 0000:0001:10\n"});
    for (const Operation& operation : kOperations)
        addOperation(service, context, operation);
}

} // namespace OrvaneTool

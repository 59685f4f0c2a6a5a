#include "ov_sys/Interface/buses/rpc/RPCJTAG.h"

#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/buses/rpc/WireLists.h"
#include "ov_sys/Interface/buses/rpc/WireResult.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

#include <cstring>
#include <utility>

namespace Orvane::JTAG {
namespace {

using Texts = std::vector<std::string>;
constexpr BoardConnection::clientId kClient = BoardConnection::JTAG;

std::vector<StringArrayEntry> entriesOf(Texts& texts) {
    std::vector<StringArrayEntry> entries;
    entries.reserve(texts.size());
    for (std::string& text : texts)
        entries.push_back({text.data(), static_cast<u_int>(text.size())});
    return entries;
}

// The board's text with its terminator at the front of a result of `length` characters.
std::string resultText(const char* text, std::size_t length) {
    std::string result(text, std::strlen(text) + 1);
    result.resize(length, 'X');
    return result;
}

} // namespace

int RPC::maxBytes(PhySession& session) {
    Simple_Result result{};
    DO_RPC(jtag_maxbytes_1, Simple_Param{0, session.identityWord()}, &result, session, kClient);
    return result.value;
}

Texts RPC::shiftMulti(PhySession& session, Texts first, Texts second, Texts third) {
    if (first.size() != second.size() || first.size() != third.size())
        throw Exceptions::Standard(
            "Jtag Multiple Shift: The length of the data and both tms arrays must be the same length.");
    const std::vector<StringArrayEntry> lists[] = {entriesOf(first), entriesOf(second), entriesOf(third)};
    const JTAG_ShiftMulti_Param param{session.identityWord(),
                                      {wireLength(lists[0]), wirePointer(lists[0])},
                                      {wireLength(lists[1]), wirePointer(lists[1])},
                                      {wireLength(lists[2]), wirePointer(lists[2])}};
    WireResult<JTAG_ShiftMulti_Result> result;
    DO_RPC(jtag_shiftmulti_1, param, result.get(), session, kClient);

    Texts texts;
    for (std::size_t i = 0; i < second.size(); ++i) {
        const bool sent = i < result->entries.entries_len && result->entries.entries_val[i].text != nullptr;
        const std::size_t length = second[i].size();
        texts.push_back(sent ? resultText(result->entries.entries_val[i].text, length)
                             : std::string(length, 'X'));
    }
    return texts;
}

std::string RPC::shift(PhySession& session, std::string first, std::string second, std::string third) {
    return shiftMulti(session, {std::move(first)}, {std::move(second)}, {std::move(third)}).front();
}

} // namespace Orvane::JTAG

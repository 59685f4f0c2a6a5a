// The records of the JTAG service's calls, filled and read.
#include "ov_sys/Interface/buses/rpc/RPCJTAG.h"

#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/buses/rpc/WireLists.h"
#include "ov_sys/Interface/buses/rpc/WireResult.h"
#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

#include <cstring>
#include <deque>
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

// Lets a result's texts be decoded into strings of the caller's, which the decoder must know the room of: a
// text may have zeros inside, and only its buffer tells what lies behind them.
class ShiftedTexts {
public:
    explicit ShiftedTexts(const Texts& lengths) {
        for (const std::string& each : lengths)
            texts_.emplace_back(each.size() + 1, 'X'); // with room for the terminator
        entries_ = entriesOf(texts_);
        for (std::string& text : texts_)
            guards_.emplace_back(text.data(), text.size());
        guards_.emplace_back(entries_.data(), entries_.size());
    }

    void presetIn(JTAG_ShiftMulti_Result& result) {
        result.entries = {wireLength(entries_), wirePointer(entries_)};
    }

    // Each as long as the string that it was made for: cut, or with filling behind the terminator.
    Texts take() {
        for (std::string& text : texts_)
            text.pop_back();
        return std::move(texts_);
    }

private:
    Texts texts_;
    std::vector<StringArrayEntry> entries_;
    std::deque<DecodeGuard> guards_;
};

// One attempt: fills the buffers anew, for the reply to an earlier one may have been put there.
clnt_stat shiftOnce(JTAG_ShiftMulti_Param param, JTAG_ShiftMulti_Result* result, CLIENT* client) {
    const auto& [count, entries] = result->entries;
    std::size_t room = 0;
    for (u_int i = 0; i < count; ++i)
        if (DecodeGuard::announced(entries[i].text, room))
            std::memset(entries[i].text, 'X', room);
    return jtag_shiftmulti_1(param, result, client);
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
    ShiftedTexts texts(second);
    WireResult<JTAG_ShiftMulti_Result> result;
    texts.presetIn(*result.get());
    DO_RPC(shiftOnce, param, result.get(), session, kClient);
    return texts.take();
}

std::string RPC::shift(PhySession& session, std::string first, std::string second, std::string third) {
    return shiftMulti(session, {std::move(first)}, {std::move(second)}, {std::move(third)}).front();
}

} // namespace Orvane::JTAG

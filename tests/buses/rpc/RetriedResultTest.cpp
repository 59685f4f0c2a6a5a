// Results of repeated calls: every attempt decodes into a record that is as it was at first.
#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"
#include "tests/support/ScriptedStub.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <array>
#include <gtest/gtest.h>
#include <vector>

namespace Orvane {
namespace {

using namespace OrvaneTest;
using OrvaneSim::Fault;
using Words = std::vector<u_int>;
using ReadStub = ScriptedStub<ID_Param, MDIO_Read_Result>;

// One reply as it comes over the wire; the last `missing` words never arrive.
struct Reply {
    int code;
    Words words;
    std::size_t missing = 0;
};

// Decodes a reply as a stub would.
clnt_stat decode(const Reply& reply, MDIO_Read_Result& result) {
    std::array<char, 512> bytes{};
    XDR stream{};
    xdrmem_create(&stream, bytes.data(), bytes.size(), XDR_ENCODE);
    Words words = reply.words;
    MDIO_Read_Result sent{reply.code, {static_cast<u_int>(words.size()), words.data()}};
    EXPECT_TRUE(xdr_MDIO_Read_Result(&stream, &sent));
    const u_int length = xdr_getpos(&stream) - static_cast<u_int>(reply.missing * sizeof(u_int));
    xdrmem_create(&stream, bytes.data(), length, XDR_DECODE);
    return xdr_MDIO_Read_Result(&stream, &result) ? RPC_SUCCESS : RPC_CANTDECODERES;
}

class RetriedResult : public testing::Test, public SessionOnBoard {
protected:
    void call(const std::vector<Reply>& replies) {
        ReadStub stub([&](std::size_t number, MDIO_Read_Result& decoded) {
            return decode(replies.at(number - 1), decoded);
        });
        DO_RPC(ReadStub::call, ID_Param{session.identityWord()}, &result, session, BoardConnection::MDIO);
        EXPECT_EQ(stub.calls, replies.size());
    }

    Words words() const { return Words(result.data.data_val, result.data.data_val + result.data.data_len); }

    MDIO_Read_Result result{};
};

class AllocatedResult : public RetriedResult {
protected:
    ~AllocatedResult() override { freeDecoded(result); }
};

TEST_F(AllocatedResult, GrowsFromOneAttemptToTheNext) {
    call({{-16, {1}}, {0, {2, 3, 4}}});
    EXPECT_EQ(words(), (Words{2, 3, 4}));
}

TEST_F(AllocatedResult, ShrinksFromOneAttemptToTheNext) {
    call({{-16, {1, 2, 3}}, {-110, {}}, {0, {4}}});
    EXPECT_EQ(words(), Words{4});
}

TEST_F(AllocatedResult, SurvivesAReplyThatBreaksOff) {
    call({{0, {1, 2, 3}, 1}, {0, {4, 5}}});
    EXPECT_EQ(words(), (Words{4, 5}));
}

TEST_F(AllocatedResult, IsLeftToTheCallerWhenTheCallThrows) {
    EXPECT_THROW(call({{-22, {1, 2, 3}}}), Exceptions::Standard);
    EXPECT_EQ(words(), (Words{1, 2, 3}));
}

class PresetResult : public RetriedResult {
protected:
    PresetResult() { result.data = {2, buffer.data()}; }

    std::array<u_int, 3> buffer{90, 91, 92}; // the last word is beyond what is announced
    DecodeGuard guard{buffer.data(), 2};
};

TEST_F(PresetResult, IsFilledAgainAfterABusyReplyThatShrankIt) {
    call({{-16, {1}}, {0, {2, 3}}});
    EXPECT_EQ(result.data.data_val, buffer.data());
    EXPECT_EQ(result.data.data_len, 2U);
    EXPECT_EQ(buffer, (std::array<u_int, 3>{2, 3, 92}));
}

TEST_F(PresetResult, IsFilledAgainAfterAnEmptyBusyReply) {
    call({{-16, {}}, {0, {2, 3}}});
    EXPECT_EQ(buffer, (std::array<u_int, 3>{2, 3, 92}));
}

TEST_F(PresetResult, TakesNoMoreThanItsRoomInAnyAttempt) {
    call({{-16, {1, 2, 3, 4}}, {0, {5, 6, 7}}});
    EXPECT_EQ(result.data.data_len, 3U);
    EXPECT_EQ(buffer, (std::array<u_int, 3>{5, 6, 92}));
}

TEST_F(PresetResult, SurvivesAReplyThatBreaksOff) {
    call({{0, {1, 2}, 1}, {0, {3, 4}}});
    EXPECT_EQ(buffer, (std::array<u_int, 3>{3, 4, 92}));
}

// A buffer of the caller that nothing announces, as large as the replies.
class UnannouncedResult : public RetriedResult {
protected:
    UnannouncedResult() { result.data = {3, buffer.data()}; }

    std::array<u_int, 3> buffer{90, 91, 92};
};

TEST_F(UnannouncedResult, IsNotFreedAfterABusyReply) {
    call({{-16, {1, 2, 3}}, {0, {4, 5, 6}}});
    EXPECT_EQ(result.data.data_val, buffer.data());
    EXPECT_EQ(result.data.data_len, 3U);
    EXPECT_EQ(buffer, (std::array<u_int, 3>{4, 5, 6}));
}

TEST_F(UnannouncedResult, IsNotFreedAfterAReplyThatBreaksOff) {
    call({{0, {1, 2, 3}, 1}, {0, {4, 5}}});
    EXPECT_EQ(result.data.data_val, buffer.data());
    EXPECT_EQ(buffer, (std::array<u_int, 3>{4, 5, 92}));
}

class RetriedRead : public testing::Test, public SessionOnBoard {
protected:
    RetriedRead() { board.setRegister(OrvaneSim::Space::C45, kPort, kPhy, kRegister, 0x1234); }
    static constexpr unsigned kRegister = 0x10005;
};

TEST_F(RetriedRead, ReturnsTheValueAfterALostReply) {
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    unsigned value = 0;
    const WrittenText written = textWritten([&] { value = MDIO::RPC::read(session, kRegister); });
    EXPECT_EQ(value, 0x1234U);
    EXPECT_EQ(written.error, "mdioRPC call error: 5. Session error handling started...\n");
    EXPECT_EQ(count("mdio_read"), 2U);
    EXPECT_EQ(session.callSequence, 102);
}

TEST_F(RetriedRead, ReturnsTheValuesAfterBusyReplies) {
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 3, -16);
    const Words values = MDIO::RPC::blockRead(session, {kRegister, kRegister});
    EXPECT_EQ(values, (Words{0x1234, 0x1234}));
    EXPECT_EQ(count("mdio_read"), 4U);
}

TEST_F(RetriedRead, RepeatsTheCallWithTheSameIdentityWord) {
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 1, -16);
    MDIO::RPC::read(session, kRegister);
    const auto requests = board.requestsOf("mdio_read");
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].bytes, requests[1].bytes);
}

} // namespace
} // namespace Orvane

// Replies that a board bends on their way, and the calls that follow them on the same handles.
#include "ov_sys/Interface/connection/RPCHandle.h"
#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"
#include "tests/support/SessionOnBoard.h"

#include <gtest/gtest.h>

namespace Orvane {
namespace {

using OrvaneSim::Fault;
using OrvaneTest::kPhy;
using OrvaneTest::kPort;
using OrvaneTest::SessionOnBoard;

constexpr unsigned kRegister = 0x1C100;
constexpr unsigned kValue = 0xCAFE;
constexpr int kPinged = 4711;
constexpr std::int64_t kIdBytes = 4;    // without these a reply is nobody's
constexpr std::int64_t kReadBytes = 36; // header, status, count, one value
constexpr std::int64_t kPingBytes = 28; // header, value

class ABentReply : public testing::Test, public SessionOnBoard {
protected:
    ABentReply() : mdio(client(BoardConnection::MDIO).pin()), setup(client(BoardConnection::SETUP).pin()) {
        board.setRegister(OrvaneSim::Space::C45, kPort, kPhy, kRegister, kValue);
    }

    // What gets no answer is to be given up soon.
    static void hurry(RPCHandle& handle) {
        timeval wait{0, 100'000};
        clnt_control(handle.get(), CLSET_TIMEOUT, reinterpret_cast<char*>(&wait));
    }
    clnt_stat read() {
        u_int address = session.mdioAddressPrefix | kRegister;
        MDIO_Read_Result result{};
        const clnt_stat status = mdio_read_1({session.identityWord(), {1, &address}}, &result, mdio->get());
        const bool right = result.data.data_len == 1 && result.data.data_val[0] == kValue;
        freeDecoded(result);
        return status == RPC_SUCCESS && !right ? RPC_FAILED : status;
    }
    clnt_stat ping() {
        int value = 0;
        const clnt_stat status = ping_1(kPinged, &value, setup->get());
        return status == RPC_SUCCESS && value != kPinged ? RPC_FAILED : status;
    }

    std::shared_ptr<RPCHandle> mdio;
    std::shared_ptr<RPCHandle> setup;
};

TEST_F(ABentReply, CutAtAnyByteFailsItsCallByDatagramAndNoOther) {
    hurry(*mdio);
    for (std::int64_t length = 0; length < kReadBytes; ++length) {
        inject(Fault::Kind::TruncateReply, "mdio", "mdio_read", 1, length);
        EXPECT_EQ(read(), length < kIdBytes ? RPC_TIMEDOUT : RPC_CANTDECODERES) << length << " bytes";
        EXPECT_EQ(read(), RPC_SUCCESS) << "after one of " << length << " bytes";
    }
}

TEST_F(ABentReply, CutAtAnyByteFailsItsCallByStreamAndNoOther) {
    hurry(*setup);
    for (std::int64_t length = 0; length < kPingBytes; ++length) {
        inject(Fault::Kind::TruncateReply, "setup", "ping", 1, length);
        EXPECT_EQ(ping(), length < kIdBytes ? RPC_TIMEDOUT : RPC_CANTDECODERES) << length << " bytes";
        EXPECT_EQ(ping(), RPC_SUCCESS) << "after one of " << length << " bytes";
    }
}

TEST_F(ABentReply, WithMadeUpBytesBehindItIsTheReplyAllTheSame) {
    for (const std::int64_t more : {1, 2, 3, 4, 5, 100, 8764, 8765, 20000}) {
        inject(Fault::Kind::LengthenReply, "mdio", "mdio_read", 1, more);
        EXPECT_EQ(read(), RPC_SUCCESS) << more << " bytes more";
        inject(Fault::Kind::LengthenReply, "setup", "ping", 1, more);
        EXPECT_EQ(ping(), RPC_SUCCESS) << more << " bytes more";
    }
}

TEST_F(ABentReply, MadeUpInWholeFailsItsCallAndNoOther) {
    hurry(*mdio);
    for (const std::int64_t length : {0, 1, 3, 4, 24, 36, 1000, 9000}) {
        inject(Fault::Kind::GarbageReply, "mdio", "mdio_read", 1, length);
        EXPECT_NE(read(), RPC_SUCCESS) << length << " bytes";
        EXPECT_EQ(read(), RPC_SUCCESS) << "after one of " << length << " bytes";
    }
}

} // namespace
} // namespace Orvane

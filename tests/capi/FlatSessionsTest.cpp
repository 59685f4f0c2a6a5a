// The flat interface's sessions for callers that use the classes; these functions let exceptions out.
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "tests/support/capi/FlatBoard.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <orvane/orvane.hpp>

namespace OrvaneTest {
namespace {

using Orvane::PhySession;
using Orvane::Exceptions::InvalidSession;
using Orvane::Exceptions::Standard;
using testing::SizeIs;

class FlatSessions : public testing::Test, protected FlatBoard {
protected:
    std::unique_ptr<PhySession> openNamed(const std::string& name) {
        auto session =
            std::make_unique<PhySession>(Orvane::AddressResponse(name, board.address()), simpleMode());
        Orvane::Setup::openConnection(*session);
        return session;
    }
};

TEST_F(FlatSessions, AreThoseOfTheRegisterAccesses) {
    const unsigned adapter = openAdapter(1);
    PhySession* session = HW_GlobalInterface_getPhySession(device(1), 5);
    HW_Read_Abstracted(adapter, 5, 1, 2);
    EXPECT_EQ(HW_Interface_Object.devices[adapter]->sessions[0]->session.get(), session);
    EXPECT_THAT(board.requestsOf("open_connection"), SizeIs(1));
}

TEST_F(FlatSessions, OfAClosedAdapterThrow) {
    knownAdapter(1);
    EXPECT_EQ(thrownText<Standard>([&] { HW_GlobalInterface_getPhySession(device(1), 5); }),
              "Adapter isn't open.");
}

TEST_F(FlatSessions, FromElsewhereAreAdopted) {
    const unsigned adapter = knownAdapter(1);
    PhySession* session = openNamed(device(1)).release();
    EXPECT_TRUE(HW_GlobalInterface_setPhySession(session));
    HW_Read_Abstracted(adapter, 5, 1, 2);
    EXPECT_EQ(HW_GlobalInterface_getPhySession(device(1), 5), session);
    EXPECT_THAT(board.requestsOf("open_connection"), SizeIs(1));
}

TEST_F(FlatSessions, ThatAreInvalidAreNotAdopted) {
    const auto session = openNamed(device(1));
    session->setSessionState(PhySession::SESSION_INVALID);
    EXPECT_THROW(HW_GlobalInterface_setPhySession(session.get()), InvalidSession);
    EXPECT_THROW(HW_GlobalInterface_setPhySession(nullptr), InvalidSession);
}

TEST_F(FlatSessions, AreClosedByDeviceAndPhy) {
    HW_Read_Abstracted(openAdapter(1), 5, 1, 2);
    EXPECT_TRUE(HW_GlobalInterface_closePhyID(device(1), 99, 5));
    EXPECT_FALSE(HW_GlobalInterface_closePhyID(device(1), 99, 5));
    EXPECT_FALSE(HW_GlobalInterface_closePhyID("NoSuch:3", 0, 5));
    EXPECT_EQ(board.sessionCount(), 0U);
}

} // namespace
} // namespace OrvaneTest

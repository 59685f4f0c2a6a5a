// The handle by which services take a session.
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <type_traits>

namespace Orvane {
namespace {

using namespace OrvaneTest;

TEST(SessionWrapper, IsAPlainPointerByValue) {
    EXPECT_TRUE(std::is_trivially_copyable_v<SessionWrapper>);
    EXPECT_EQ(sizeof(SessionWrapper), sizeof(void*));
}

TEST(SessionWrapper, GivesItsSessionInEveryStateButInvalid) {
    PhySession session("board7", simpleMode());
    const SessionWrapper wrapper(&session);
    for (const int state : {0, 1, 2, 4}) {
        session.setSessionState(static_cast<PhySession::SessionState_t>(state));
        EXPECT_EQ(&wrapper.usable(), &session);
    }
}

TEST(SessionWrapper, RefusesAnInvalidSession) {
    PhySession session("board7", simpleMode());
    session.setSessionState(PhySession::SESSION_INVALID);
    EXPECT_EQ(thrownText<Exceptions::InvalidSession>([&] { SessionWrapper(&session).usable(); }),
              "The board session is no longer valid.");
}

TEST(SessionWrapper, RefusesNoSession) {
    EXPECT_EQ(thrownText<Exceptions::InvalidSession>([] { SessionWrapper(nullptr).usable(); }),
              "The board session is no longer valid.");
}

} // namespace
} // namespace Orvane

#include "tests/support/OpenSession.h"

#include "ov_sys/Interface/buses/rpc/RPCSetup.h"

namespace OrvaneTest {

using Orvane::MdioExclusive;

MdioExclusive exclusiveOpenMode(unsigned short key) {
    return {kPhy, kPort, 0, 1, 0, key, 0};
}

MdioExclusive concurrentOpenMode(unsigned short key) {
    return {kPhy, kPort, 0, 0, 1, key, 0};
}

MdioExclusive simpleOpenMode(unsigned short key) {
    return {kPhy, kPort, 1, 0, 1, key, 0};
}

ConnectedSession::ConnectedSession(MdioExclusive const& mode) : session(record(), mode) {}

OpenSession::OpenSession(MdioExclusive const& mode) : ConnectedSession(mode) {
    Orvane::Setup::openConnection(session);
    board.forgetRequests();
}

} // namespace OrvaneTest

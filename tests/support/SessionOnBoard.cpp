// The modes of a session, and its opening.
#include "tests/support/SessionOnBoard.h"

#include "ov_sys/Interface/buses/rpc/RPCSetup.h"

namespace OrvaneTest {

using Orvane::MdioExclusive;
using Orvane::PhySession;

MdioExclusive simpleMode(int phy, unsigned port) {
    return {phy, port, 1, 0, 1, 0, 0};
}

MdioExclusive exclusiveMode(unsigned short key, int phy) {
    return {phy, kPort, 0, 1, 0, key, 0};
}

MdioExclusive concurrentMode(unsigned short key, int phy) {
    return {phy, kPort, 0, 0, 1, key, 0};
}

std::unique_ptr<PhySession> openSession(OrvaneSim::Board& board, const MdioExclusive& mode) {
    auto session =
        std::make_unique<PhySession>(Orvane::AddressResponse(board.serial(), board.address()), mode);
    Orvane::Setup::openConnection(*session);
    return session;
}

ConnectedSession::ConnectedSession(const MdioExclusive& mode, const std::string& serial)
    : OneBoard(serial), owned(std::make_unique<PhySession>(record(), mode)), session(*owned) {}

Orvane::RPCClient& ConnectedSession::client(Orvane::BoardConnection::clientId id) const {
    return *session.connection->getClient(id);
}

SessionOnBoard::SessionOnBoard(const MdioExclusive& mode, const std::string& serial)
    : ConnectedSession(mode, serial) {
    Orvane::Setup::openConnection(session);
    board.forgetRequests();
}

} // namespace OrvaneTest

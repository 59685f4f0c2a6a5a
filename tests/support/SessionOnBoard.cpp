#include "tests/support/SessionOnBoard.h"

#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"

namespace OrvaneTest {

Orvane::MdioExclusive simpleMode(int phyAddress, unsigned int deviceIndex) {
    Orvane::MdioExclusive mode{};
    mode.phyAddress = phyAddress;
    mode.deviceIndex = deviceIndex;
    mode.simple = 1;
    mode.shared = 1;
    return mode;
}

std::unique_ptr<Orvane::PhySession> openSession(OrvaneSim::Board& board, const Orvane::MdioExclusive& mode) {
    auto session =
        std::make_unique<Orvane::PhySession>(Orvane::AddressResponse(board.serial(), board.address()), mode);
    Orvane::Setup::openConnection(*session);
    return session;
}

SessionOnBoard::SessionOnBoard(const Orvane::MdioExclusive& mode)
    : board(lab.add()), owned(openSession(board, mode)), session(*owned) {
    board.forgetRequests();
}

} // namespace OrvaneTest

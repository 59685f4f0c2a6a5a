// Picks the program that a request is for.
#pragma once

#include "simulator/board/BoardParts.h"
#include "simulator/board/Service.h"
#include "simulator/engine/RpcServer.h"

#include <vector>

namespace OrvaneSim {

/// Answers a board's requests with one set of programs; others are refused as unavailable, other versions
/// with the version that is served. Belongs to the loop's thread.
class ProgramSet : public RpcHandler {
public:
    /// Both must outlive the set.
    ProgramSet(BoardParts& board, const std::vector<Program>& programs)
        : board_(board), programs_(programs) {}

    void answer(RpcCall& call) override;

private:
    void refuseVersion(RpcCall& call, const Program& program);

    BoardParts& board_;
    const std::vector<Program>& programs_;
};

} // namespace OrvaneSim

// Picks the program and the procedure that a request is for.
#pragma once

#include "simulator/board/BoardParts.h"
#include "simulator/board/Program.h"
#include "simulator/engine/RpcServer.h"

namespace OrvaneSim {

// Answers a board's requests with one set of programs; others are refused as unavailable, other versions
// with the version that is served. Belongs to the loop's thread.
class ProgramSet : public RpcHandler {
public:
    // Both must outlive the set.
    ProgramSet(BoardParts& board, const ProgramList& programs) : board_(board), programs_(programs) {}

    void answer(RpcCall& call) override;

private:
    void serve(RpcCall& call, const Program& program);
    void refuseVersion(RpcCall& call, const Program& program);

    BoardParts& board_;
    const ProgramList& programs_;
};

} // namespace OrvaneSim

// From a request to its procedure.
#include "simulator/board/ProgramSet.h"

#include "simulator/board/Procedure.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace OrvaneSim {
namespace {

constexpr std::size_t kReplyMemory = 2048;

} // namespace

void ProgramSet::refuseVersion(RpcCall& call, const Program& program) {
    // A program that is silent, refused or loses its replies does so for every version.
    const auto fault = board_.faults.take(program.name, "");
    if (!fault || passesFault(*fault, call, board_.faults.dice()) || fault->kind == Fault::Kind::ResultCode)
        call.refuseVersion(program.version, program.version);
}

void ProgramSet::answer(RpcCall& call) {
    if (board_.faults.hanging())
        return;
    const auto program = std::find_if(programs_.begin(), programs_.end(),
                                      [&](const Program* p) { return p->number == call.header().program; });
    if (program == programs_.end()) {
        call.refuse(PROG_UNAVAIL);
        return;
    }
    if ((*program)->version == call.header().version)
        serve(call, **program);
    else
        refuseVersion(call, **program);
}

void ProgramSet::serve(RpcCall& call, const Program& program) {
    if (call.header().procedure == NULLPROC) {
        call.succeed(openRoutine<Nothing>(), nullptr);
        return;
    }
    const Procedure* const procedure = program.find(call.header().procedure);
    if (!procedure) {
        call.refuse(PROC_UNAVAIL);
        return;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): raw memory
    alignas(std::max_align_t) std::array<std::byte, kReplyMemory> room;
    std::pmr::monotonic_buffer_resource memory(room.data(), room.size());
    ProcedureCall procedureCall{board_, call, program, *procedure, memory};
    procedure->handler.serve(procedureCall);
}

} // namespace OrvaneSim

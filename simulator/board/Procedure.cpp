// How a call begins, and how a fault changes its course.
#include "simulator/board/Procedure.h"

#include "simulator/board/ReplyBytes.h"

#include <algorithm>

namespace OrvaneSim {
namespace {

using Kind = Fault::Kind;

void count(CallCounts& counts, const Fault& fault) {
    ++counts.faults;
    if (fault.kind == Kind::LoseRequest || fault.kind == Kind::Silent || fault.kind == Kind::CloseConnection)
        ++counts.lostRequests;
    if (fault.kind == Kind::LoseReply)
        ++counts.lostReplies;
}

// How the reply travels, for faults that leave its bytes alone.
void setDelivery(const Fault& fault, Delivery& delivery) {
    const std::chrono::milliseconds time(fault.value);
    switch (fault.kind) {
    case Kind::LoseReply:
        delivery.copies = 0;
        break;
    case Kind::DuplicateReply:
        delivery.copies = 2;
        break;
    case Kind::DelayReply:
        delivery.delay = time;
        break;
    case Kind::ReorderReply:
        delivery.hold = time;
        break;
    case Kind::TrickleReply:
        delivery.trickle = time;
        break;
    case Kind::WrongPort:
        delivery.otherPort = true;
        break;
    case Kind::CloseMidReply:
    case Kind::HalfOpen:
        delivery.cutAfter = static_cast<std::size_t>(std::max<std::int64_t>(fault.value, 0));
        delivery.halfOpen = fault.kind == Kind::HalfOpen;
        break;
    default:
        break;
    }
}

} // namespace

bool passesFault(const Fault& fault, RpcCall& call, Dice& dice) {
    switch (fault.kind) {
    case Kind::LoseRequest:
    case Kind::Silent:
    case Kind::ResultCode:
        return false;
    case Kind::CloseConnection:
        call.delivery.closeConnection = true;
        return false;
    case Kind::RefuseProgram:
        call.refuse(PROG_UNAVAIL);
        return false;
    default:
        setDelivery(fault, call.delivery);
        call.delivery.change = byteChangeOf(fault, dice);
        return true;
    }
}

CallFate beginCall(ProcedureCall& call) {
    BoardParts& board = call.board;
    RequestLog::Entry entry{&call.program, &call.procedure, call.rpc.transport() == Transport::Tcp,
                            std::string(call.rpc.arguments())};
    CallFate fate{board.faults.take(call.program.name, call.procedure.name),
                  board.counters.of(call.procedure)};
    ++fate.counts.received;
    if (fate.fault) {
        count(fate.counts, *fate.fault);
        fate.executed = passesFault(*fate.fault, call.rpc, board.faults.dice());
    }
    if (!board.observers.empty()) {
        const Request request = RequestLog::expand(entry);
        for (const auto& observer : board.observers)
            observer(request);
    }
    board.requests.add(std::move(entry));
    return fate;
}

} // namespace OrvaneSim

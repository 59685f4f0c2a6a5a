// How a fault changes the course of a call.
#include "simulator/board/Procedure.h"

namespace OrvaneSim {

bool passesFault(const Fault& fault, Delivery& delivery) {
    switch (fault.kind) {
    case Fault::Kind::LoseRequest:
    case Fault::Kind::Silent:
    case Fault::Kind::ResultCode:
        return false;
    case Fault::Kind::CloseConnection:
        delivery.closeConnection = true;
        return false;
    case Fault::Kind::LoseReply:
        delivery.copies = 0;
        return true;
    case Fault::Kind::DuplicateReply:
        delivery.copies = 2;
        return true;
    case Fault::Kind::DelayReply:
        delivery.delay = std::chrono::milliseconds(fault.value);
        return true;
    case Fault::Kind::ReplyCount:
    case Fault::Kind::OverrideWord:
        return true;
    }
    return true;
}

} // namespace OrvaneSim

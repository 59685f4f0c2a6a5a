// A call that reads registers, for targets that feed a transport.
#pragma once

#include "ov_sys/Interface/connection/CallMessage.h"
#include "ov_sys/Interface/rpc_protocol/Codec.h"

namespace OrvaneFuzz {

struct ReadCall {
    MDIO_Read_Param param{};
    MDIO_Read_Result result{};
    Orvane::CallMessage message;

    explicit ReadCall(std::uint32_t id)
        : message(id, {1, 1, 1}, Orvane::xdrProcedure<MDIO_Read_Param>, &param,
                  Orvane::xdrProcedure<MDIO_Read_Result>, &result) {}
    ~ReadCall() { Orvane::freeDecoded(result); }
    ReadCall(const ReadCall&) = delete;
    ReadCall& operator=(const ReadCall&) = delete;
};

} // namespace OrvaneFuzz

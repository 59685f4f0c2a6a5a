// Changes to the bytes of an encoded reply.
#pragma once

#include "simulator/board/Dice.h"
#include "simulator/board/Fault.h"

#include <functional>
#include <string>

namespace OrvaneSim {

// What a fault does to the bytes of a reply, made-up bytes already drawn; null when it leaves them alone.
std::function<void(std::string& reply)> byteChangeOf(const Fault& fault, Dice& dice);

// `count` made-up bytes.
std::string madeUpBytes(std::size_t count, Dice& dice);

} // namespace OrvaneSim

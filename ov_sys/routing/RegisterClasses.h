// The register classes of MMD 31 that can be handed to the PHY's firmware.
#pragma once

namespace Orvane::Routing {

constexpr unsigned kClassMmd = 31; // no other has registers of a class

bool isNec(unsigned mmd, unsigned address);
bool isDec(unsigned mmd, unsigned address);

} // namespace Orvane::Routing

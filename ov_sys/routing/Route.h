// Chooses the path of a register access by MMD and register, and takes it.
#pragma once

#include "ov_sys/routing/Access.h"
#include "ov_sys/routing/Delegations.h"

namespace Orvane::Routing {

enum class Route { Plain, OverClause22, Mailbox, Tge, Window, Serdes, Paged };

constexpr unsigned kWindowMmd = 10;
constexpr unsigned kTgeMmd = 11;
constexpr unsigned kSerdesMmd = 27;
constexpr unsigned kPagedMmd = 28;

Route routeOfWrite(const Delegations& delegations, unsigned mmd);
Route routeOfRead(const Delegations& delegations, unsigned mmd, unsigned address);

// As the route's own functions. A value of none, or false, says that the access ended the path.
bool write(Access& phy, Route route, unsigned mmd, unsigned address, unsigned value);
Value read(Access& phy, Route route, unsigned mmd, unsigned address);

} // namespace Orvane::Routing

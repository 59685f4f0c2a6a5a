// Simulated boards for tests of programs that use the library: <orvane/lab.h>, library orvane::lab.
//
// OrvaneSim::PrivateNetwork::enter gives the test a network of its own (once, before the first thread);
// OrvaneSim::Lab starts boards in it, OrvaneSim::Board shows what they were asked and does to them what real
// boards do to their users. Nothing here waits by sleeping: Board::waitFor waits for a request.
#pragma once

#include "simulator/lab/Lab.h"
#include "simulator/network/PrivateNetwork.h"

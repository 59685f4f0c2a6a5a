// The class interface of Orvane, for C++17: discovery, connections, sessions, bus services and the device
// list.
#pragma once

#include "ov_sys/Interface/buses/ADC.h"
#include "ov_sys/Interface/buses/GPIO.h"
#include "ov_sys/Interface/buses/I2C.h"
#include "ov_sys/Interface/buses/JTAG.h"
#include "ov_sys/Interface/buses/KeepAlive.h"
#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/buses/MdioAsync.h"
#include "ov_sys/Interface/buses/Setup.h"
#include "ov_sys/Interface/buses/Thermal.h"
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/discovery/BoardFinder.h"
#include "ov_sys/Interface/discovery/InterfaceLister.h"
#include "ov_sys/Interface/discovery/MulticastBoardResolver.h"
#include "ov_sys/Interface/discovery/TcpBoardResolver.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/DiagnosticsSink.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include <orvane/orvane.h>
#include <string>

// The flat interface's sessions, for callers that use the classes directly. These let exceptions out.
extern "C" {

// The session that the flat interface uses for a PHY on the named device, opened on first use; the device
// owns it. Blocks and throws as HWInterface::getPhySession().
ORVANE_API Orvane::PhySession *HW_GlobalInterface_getPhySession(std::string deviceName, int phyId);

// Makes the flat interface take over a session that was opened elsewhere. Throws as
// HWInterface::setSession().
ORVANE_API bool HW_GlobalInterface_setPhySession(Orvane::SessionWrapper session);

// Closes the session of a PHY on the named device; false on any failure.
ORVANE_API bool HW_GlobalInterface_closePhyID(std::string deviceName, int ignored, int phyId);
}

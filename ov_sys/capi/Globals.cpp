// Every object of the library that lives as long as the process; made in this order, destroyed in the
// reverse.
#include "ov_sys/Interface/buses/I2C.h"
#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/devices/HWInterface.h"

namespace Orvane {

MDIO::MDIO mdio;
I2C::I2C i2c;

} // namespace Orvane

Orvane::HWInterface HW_Interface_Object;

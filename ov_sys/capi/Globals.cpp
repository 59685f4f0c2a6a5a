// Every object of the library that lives as long as the process; made in this order, destroyed in the
// reverse.
#include "ov_sys/Interface/buses/I2C.h"
#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/ProcessExit.h"

namespace Orvane {

MDIO::MDIO mdio;
I2C::I2C i2c;

// An object whose life ends when somebody says so.
template <class T>
union Undying {
    T object;
    Undying() : object() {}
    ~Undying() {}
    Undying(const Undying&) = delete;
    Undying& operator=(const Undying&) = delete;
};

} // namespace Orvane

// What the header declares as HW_Interface_Object.
ORVANE_API Orvane::Undying<Orvane::HWInterface> globalInterface asm("HW_Interface_Object");

namespace {

// Ends the sessions. At the exit of the process other threads may be inside calls, and make more.
struct Farewell {
    ~Farewell() {
        if (Orvane::ProcessExit::begun())
            globalInterface.object.closeAtExit();
        else
            globalInterface.object.~HWInterface();
    }
} const farewell;

} // namespace

// Every object of the library that lives as long as the process; made in this order, destroyed in the
// reverse.
#include "ov_sys/capi/Globals.h"

#include "ov_sys/Interface/buses/I2C.h"
#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/foundation/ProcessExit.h"

#include <new>
#include <orvane/orvane.h>

namespace Orvane {
// Room for an object whose life begins and ends when somebody says so.
template <class T>
union Room {
    char none;
    T object;
    constexpr Room() : none() {}
    ~Room() {} // NOLINT(modernize-use-equals-default): the object has one
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;
};

MDIO::MDIO mdio;
I2C::I2C i2c;

} // namespace Orvane

// ---- What the headers declare ----

// As HW_Interface_Object.
ORVANE_API Orvane::Room<Orvane::HWInterface> sharedInterface asm("HW_Interface_Object");

unsigned int delegationStatus[ORVANE_TABLE_ROWS][5];
unsigned int clause22Enable[ORVANE_TABLE_ROWS];
unsigned int Default_PHY_ID = 0;
FILE* HW_log = nullptr;
int loggingToFile = 0;
unsigned char isLoggingInitialized = 0;

// Every copy of the library in a process finds that of the first one here.
extern "C" ORVANE_API char orvane_first_copy;
char orvane_first_copy = 0;

// ---- The same in this copy ----

#define ORVANE_OWN(name) __attribute__((alias(name), visibility("hidden")))

extern Orvane::Room<Orvane::HWInterface> ownInterface ORVANE_OWN("HW_Interface_Object");
extern unsigned int ownDelegationStatus[ORVANE_TABLE_ROWS][5] ORVANE_OWN("delegationStatus");
extern unsigned int ownClause22Enable[ORVANE_TABLE_ROWS] ORVANE_OWN("clause22Enable");
extern unsigned int ownDefaultPhyId ORVANE_OWN("Default_PHY_ID");
extern FILE* ownLog ORVANE_OWN("HW_log");
extern int ownLoggingToFile ORVANE_OWN("loggingToFile");
extern char ownCopy ORVANE_OWN("orvane_first_copy");

namespace Orvane {

Globals globals{&sharedInterface.object, delegationStatus, clause22Enable,
                &Default_PHY_ID,         &HW_log,          &loggingToFile};

namespace {

// Before the objects below are made.
[[gnu::constructor(101)]] void leaveSharedDataToTheFirstCopy() {
    const char* first = &orvane_first_copy;
    asm("" : "+r"(first)); // which the compiler takes for its alias
    if (first != &ownCopy)
        globals = {&ownInterface.object, ownDelegationStatus, ownClause22Enable, &ownDefaultPhyId, &ownLog,
                   &ownLoggingToFile};
}

// Ends the sessions. At the exit of the process other threads may be inside calls, and make more.
struct Lifetime {
    Lifetime() { new (globals.interface) HWInterface; }
    ~Lifetime() {
        if (ProcessExit::begun())
            globals.interface->closeAtExit();
        else
            globals.interface->~HWInterface();
    }
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;
} const lifetime;

} // namespace
} // namespace Orvane

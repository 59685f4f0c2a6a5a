// The exception classes: their texts and how they are caught.
#include "ov_sys/Interface/foundation/Exceptions.h"

#include <gtest/gtest.h>

namespace Orvane::Exceptions {
namespace {

// The text that a handler of std::exception sees.
std::string caughtText(const std::exception& caught) {
    return caught.what();
}

TEST(Exceptions, StandardGivesItsMessage) {
    EXPECT_EQ(caughtText(Standard("Invalid adapter index")), "Invalid adapter index");
}

TEST(Exceptions, InvalidNameGivesTheNameUnchanged) {
    EXPECT_EQ(caughtText(InvalidName("A:B:c")), "A:B:c");
}

TEST(Exceptions, InvalidRPCClientPutsItsPrefixBeforeTheName) {
    EXPECT_EQ(caughtText(InvalidRPCClient("mdio")), "Invalid RPC client: mdio");
}

TEST(Exceptions, InvalidRPCClientJoinsThePrefixAtConstruction) {
    EXPECT_EQ(InvalidRPCClient("adc").text, "Invalid RPC client: adc");
}

TEST(Exceptions, NoDeviceHasItsFixedText) {
    EXPECT_EQ(caughtText(NoDevice()), "Device not found.");
}

TEST(Exceptions, AccessDeniedHasItsFixedText) {
    EXPECT_EQ(caughtText(AccessDenied()), "Device is in use or access denied.");
}

TEST(Exceptions, DeviceConnectionHasItsFixedText) {
    EXPECT_EQ(caughtText(DeviceConnection()), "Problem with connection to rpc server on device.");
}

TEST(Exceptions, InvalidSessionHasItsFixedText) {
    EXPECT_EQ(caughtText(InvalidSession()), "The board session is no longer valid.");
}

// Whether a handler of Standard catches it.
bool caughtAsStandard(const std::exception& thrown) {
    return dynamic_cast<const Standard*>(&thrown) != nullptr;
}

TEST(Exceptions, OfTheOtherClassesAreNotCaughtAsStandard) {
    EXPECT_TRUE(caughtAsStandard(Standard("")));
    EXPECT_FALSE(caughtAsStandard(InvalidName("")));
    EXPECT_FALSE(caughtAsStandard(InvalidRPCClient("")));
    EXPECT_FALSE(caughtAsStandard(NoDevice()));
    EXPECT_FALSE(caughtAsStandard(AccessDenied()));
    EXPECT_FALSE(caughtAsStandard(DeviceConnection()));
    EXPECT_FALSE(caughtAsStandard(InvalidSession()));
}

} // namespace
} // namespace Orvane::Exceptions

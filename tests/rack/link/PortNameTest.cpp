// Names of ports, and the failure of a search for one.
#include "ov_sys/rack/link/PortName.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::Failure;
using Orvane::FailureKind;
using Orvane::RackLink::PortName;

TEST(PortName, IsASerialNumberOfVisibleCharactersAndANumberUpTo19) {
    for (const char* const name : {"!:0", "~:0", "az:19", "a/b:7"})
        EXPECT_TRUE(PortName::read(name)) << name;
    for (const char* const name :
         {"a b:0", " :0", "\x7F:0", "\xC2\xB0:0", "a:20", "a:-1", "a:", ":1", ":1:2", "a"})
        EXPECT_FALSE(PortName::read(name)) << name;
    EXPECT_EQ(PortName::read("az:19")->board, "AZ");
    EXPECT_EQ(PortName::read("az:19")->port, 19U);
    EXPECT_EQ(PortName().port, 0U);
}

TEST(PortName, OfLettersIsInUpperCase) {
    EXPECT_EQ(PortName::upper("`az{@AZ["), "`AZ{@AZ[");
}

TEST(PortName, ThatIsNoneIsRefusedWithItsText) {
    try {
        PortName::parse("none", "open");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const Failure& failure) {
        EXPECT_STREQ(failure.what(),
                     "open \"none\": invalid argument. A port is a board's serial number, a colon and "
                     "a number from 0 to 19, such as OV0001:0.");
    }
}

TEST(PortName, OfWhatWasNotFoundIsInTheFailure) {
    using Orvane::RackLink::notFound;
    EXPECT_STREQ(notFound(FailureKind::NoSuchPort, "open", {"A", 3}).what(),
                 "A:3: open: no such port. Check the name, the board's power and that it is on a network of "
                 "this host.");
    EXPECT_STREQ(
        notFound({FailureKind::Unreachable, -98}, "discover", {}).what(),
        "discover: unreachable, EADDRINUSE (-98). UDP port 12345 of this host is not to be had: end the "
        "program that keeps it.");
    EXPECT_EQ(notFound(FailureKind::Cancelled, "discover", {}).port(), -1);
}

} // namespace
} // namespace OrvaneTest

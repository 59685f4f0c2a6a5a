// Turns the library's failures into the decisions of a test program: give up, try again later, fix the call.
#include <cstdio>
#include <exception>
#include <functional>
#include <orvane/orvane.hpp>
#include <string>

namespace {

// The classes do not derive from each other: each is caught by itself, and std::exception last.
std::string verdict(const std::function<void()>& access) {
    namespace Failures = Orvane::Exceptions;
    try {
        access();
        return "done";
    } catch (const Failures::NoDevice&) {
        return "no such board or port: check cable, power and name";
    } catch (const Failures::InvalidName&) {
        return "not a device name: it is SERIAL:PORT";
    } catch (const Failures::AccessDenied&) {
        return "somebody else has the port: try again later";
    } catch (const Failures::InvalidSession&) {
        return "the session is dead: close the PHY and open it again";
    } catch (const Failures::DeviceConnection&) {
        return "the board's server cannot be reached";
    } catch (const Failures::Standard& problem) {
        return "told so: " + std::string(problem.what());
    } catch (const std::exception&) {
        return "something else";
    }
}

} // namespace

int main() {
    Orvane::HWInterface boards;
    const auto show = [](const char* what, const std::function<void()>& access) {
        std::printf("%-26s %s\n", what, verdict(access).c_str());
    };
    show("a port that is there", [&] { boards.openAdapter(unsigned(boards.deviceNumber("OV0001:0", ""))); });
    show("a read of it", [&] { boards.readAdapter(0, 3, 1, 2); });
    show("adapter 99", [&] { boards.readAdapter(99, 3, 1, 2); });
    show("an adapter not opened", [&] { boards.readAdapter(1, 3, 1, 2); });
    show("a null session", [&] { Orvane::mdio.read(nullptr, 0x1E0001); });
    show("a board that is not there", [&] { boards.deviceNumber("OV9999:0", ""); });
    show("a name without a port", [] { Orvane::SimpleDeviceEntry entry("OV0001"); });
    return 0;
}

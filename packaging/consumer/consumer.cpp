// A C++ program on the installed class interface; touches no network.
#include <orvane/orvane.hpp>

#include <iostream>

int main() {
    Orvane::HWInterface boards;
    if (!boards.isValidName("ov0001:1") || boards.openAdapter(0))
        return 1;
    try {
        Orvane::mdio.read(Orvane::SessionWrapper(nullptr), 0x1E0001);
    } catch (const Orvane::Exceptions::InvalidSession& refused) {
        std::cout << "C++: no device is known, and a null session is refused: " << refused.what() << '\n';
        return 0;
    }
    return 1;
}

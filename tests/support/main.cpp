// Runs the tests of one room inside a private network, so that no packet can leave the machine.
#include "simulator/network/PrivateNetwork.h"

#include <cstdio>
#include <cstring>
#include <exception>
#include <gtest/gtest.h>

namespace {

bool onlyLists(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::strncmp(argv[i], "--gtest_list_tests", 18) == 0)
            return true;
    return false;
}

} // namespace

int main(int argc, char** argv) {
    if (!onlyLists(argc, argv)) {
        try {
            OrvaneSim::PrivateNetwork::enter({});
        } catch (const std::exception& problem) {
            std::fprintf(stderr, "cannot make the private network that the tests run in: %s\n",
                         problem.what());
            return 1;
        }
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

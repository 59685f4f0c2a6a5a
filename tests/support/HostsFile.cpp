// The names go into a file of the test's own mount namespace.
#include "tests/support/HostsFile.h"

#include "simulator/network/PrivateFiles.h"

#include <sys/mount.h>

namespace OrvaneTest {
namespace {

constexpr const char* kPath = "/etc/hosts";

} // namespace

HostsFile::HostsFile(const std::string& text) {
    OrvaneSim::replaceFile(kPath, text);
}

HostsFile::~HostsFile() {
    umount2(kPath, MNT_DETACH);
}

} // namespace OrvaneTest

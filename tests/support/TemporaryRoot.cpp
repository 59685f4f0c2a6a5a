// The folder is made, entered, and removed in the end.
#include "tests/support/TemporaryRoot.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <unistd.h>

namespace OrvaneTest {
namespace {

void check(bool good, const char* step) {
    if (!good)
        throw std::system_error(errno, std::generic_category(), step);
}

int openFolder(const char* path) {
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    check(folder >= 0, path);
    return folder;
}

} // namespace

TemporaryRoot::TemporaryRoot()
    : place_("/tmp/orvane-root-XXXXXX"), formerRoot_(openFolder("/")), formerFolder_(openFolder(".")) {
    check(mkdtemp(place_.data()) != nullptr, "cannot make a folder");
    check(chroot(place_.c_str()) == 0, "cannot change the root folder");
}

TemporaryRoot::~TemporaryRoot() {
    const bool restored = fchdir(formerRoot_) == 0 && chroot(".") == 0 && fchdir(formerFolder_) == 0;
    close(formerRoot_);
    close(formerFolder_);
    if (!restored) { // every later test would run in the wrong place
        std::perror("cannot put the root folder back");
        std::abort();
    }
    std::error_code ignored;
    std::filesystem::remove_all(place_, ignored);
}

void TemporaryRoot::addFile(const std::string& folder, const std::string& name, const std::string& text) {
    std::filesystem::create_directory("/" + folder);
    std::ofstream file("/" + folder + "/" + name);
    file << text << std::flush;
    check(static_cast<bool>(file), name.c_str());
}

} // namespace OrvaneTest

// Replaces system files by bind mounts of files in memory.
#include "simulator/network/PrivateFiles.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/mount.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneSim {
namespace {

[[noreturn]] void fail(const std::string& path) {
    throw std::system_error(errno, std::generic_category(), "cannot replace " + path);
}

// A folder in memory that only this process sees, taken from view again with this object; mounts of its
// files live on. A removed file would not do: nothing can be mounted over a mount of one, and networks may
// be nested.
class PrivateFolder {
public:
    PrivateFolder() {
        if (!::mkdtemp(name_.data()))
            fail(name_);
        if (::mount("none", name_.c_str(), "tmpfs", 0, nullptr) != 0) {
            const int error = errno;
            ::rmdir(name_.c_str());
            errno = error;
            fail(name_);
        }
    }
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;
    ~PrivateFolder() {
        ::umount2(name_.c_str(), MNT_DETACH);
        ::rmdir(name_.c_str());
    }

    std::string write(const std::string& text) const {
        std::string file = name_ + "/file";
        std::ofstream stream(file);
        stream << text << std::flush;
        if (!stream || ::chmod(file.c_str(), 0644) != 0)
            fail(file);
        return file;
    }

private:
    std::string name_ = "/tmp/orvane-lab-XXXXXX";
};

} // namespace

void replaceFile(const std::string& path, const std::string& text) {
    const PrivateFolder folder;
    if (::mount(folder.write(text).c_str(), path.c_str(), nullptr, MS_BIND, nullptr) != 0)
        fail(path);
}

void resolveNamesLocally() {
    std::ifstream original("/etc/nsswitch.conf");
    if (!original)
        return;
    std::ostringstream changed;
    for (std::string line; std::getline(original, line);)
        changed << (line.rfind("hosts:", 0) == 0 ? "hosts: files dns" : line) << '\n';
    replaceFile("/etc/nsswitch.conf", changed.str());
}

} // namespace OrvaneSim

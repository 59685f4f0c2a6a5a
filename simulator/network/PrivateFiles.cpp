// Replaces system files by bind mounts of unlinked temporary files.
#include "simulator/network/PrivateFiles.h"

#include "simulator/engine/FileDescriptor.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <sys/mount.h>
#include <sys/stat.h>
#include <system_error>

namespace OrvaneSim {
namespace {

[[noreturn]] void fail(const std::string& path) {
    throw std::system_error(errno, std::generic_category(), "cannot replace " + path);
}

/// A file in the temporary folder, removed again with this object; a mount of it lives on.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& text) {
        file_ = FileDescriptor(::mkstemp(name_.data()));
        if (!file_)
            fail(name_);
        if (::write(file_.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()) ||
            ::fchmod(file_.get(), 0644) != 0) {
            ::unlink(name_.c_str());
            fail(name_);
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() { ::unlink(name_.c_str()); }

    const char* name() const { return name_.c_str(); }

private:
    std::string name_ = "/tmp/orvane-lab-XXXXXX";
    FileDescriptor file_;
};

} // namespace

void replaceFile(const std::string& path, const std::string& text) {
    const TemporaryFile file(text);
    if (::mount(file.name(), path.c_str(), nullptr, MS_BIND, nullptr) != 0)
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

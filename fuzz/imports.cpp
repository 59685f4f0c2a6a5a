// Files that are imported: CMSIS-SVD, uHAL address tables, CSV.
#include "fuzz/Input.h"

#include <orvane/maps.hpp>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace OrvaneFuzz;

// The bytes as a file that needs no disk.
class MemoryFile {
public:
    MemoryFile(const std::uint8_t* data, std::size_t size)
        : descriptor_(memfd_create("import", MFD_CLOEXEC)) {
        mustHold(descriptor_ >= 0 && write(descriptor_, data, size) == static_cast<ssize_t>(size));
    }
    ~MemoryFile() { close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const MemoryFile file(data, size);
    try {
        const Orvane::ImportedMap imported = Orvane::RegisterMap::importFile(file.path());
        mustHold(Orvane::RegisterMap::parse(imported.map.toJson()).size() == imported.map.size());
    } catch (const Orvane::MapError& error) {
        mustHold(!error.problems().empty());
    }
    return 0;
}

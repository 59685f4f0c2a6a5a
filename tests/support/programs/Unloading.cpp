// Loads the library named by its first argument, reads from the device named by the second, causes an error,
// and unloads it; says what is left of it then.
#include <cstdio>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

namespace {

template <class Function>
Function* function(void* library, const char* name) {
    return reinterpret_cast<Function*>(dlsym(library, name));
}

bool isMapped(const char* name) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find(name) != std::string::npos)
            return true;
    return false;
}

long threads() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return std::distance(begin(tasks), end(tasks));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3)
        return 2;
    std::thread([] {}).join(); // a sanitizer starts a thread of its own beside the first
    const long before = threads();
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror()); // NOLINT(concurrency-mt-unsafe): there is one thread here
        return 2;
    }
    std::printf("opened %d\n", function<int(const char*)>(library, "HW_Open")(argv[2]));
    const auto read =
        function<unsigned(unsigned, unsigned, unsigned, unsigned)>(library, "HW_Read_Abstracted");
    const unsigned adapter = function<unsigned()>(library, "HW_GetDefaultAdapter")();
    std::printf("read %04X\n", read(adapter, 3, 1, 2));
    read(2999, 3, 1, 2);
    std::printf("error %s\n", function<const char*()>(library, "HW_Error")());
    std::printf("more threads %ld\n", threads() - before);
    dlclose(library);
    std::printf("then: more threads %ld, mapped %d\n", threads() - before, isMapped("liborvane") ? 1 : 0);
    return 0;
}

// Linked with the library, and using its data directly, loads another copy of it (first argument), as a
// plug-in may bring one along. Opens the second argument's device itself and the third's in the copy.
#include <cstdio>
#include <dlfcn.h>
#include <orvane/orvane.hpp>
#include <stdexcept>

namespace {

class Copy {
public:
    explicit Copy(const char* path) : library_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
        if (library_ == nullptr)
            throw std::runtime_error("the copy cannot be loaded");
    }
    ~Copy() { dlclose(library_); }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    template <class Function>
    Function* operator()(Function&, const char* name) const {
        return reinterpret_cast<Function*>(dlsym(library_, name));
    }

private:
    void* library_;
};

#define IN_COPY(copy, function) ((copy)(function, #function))

void show(const char* moment) {
    const unsigned adapter = HW_Interface_Object.defaultAdapter();
    std::printf("%s: devices %zu, delegation %u, log %d, failed %d, PHY %u, read %04X\n", moment,
                HW_Interface_Object.devices.size(), delegationStatus[adapter][3], HW_log != nullptr ? 1 : 0,
                HW_Fail(), Default_PHY_ID, HW_Read_Abstracted(adapter, 3, 1, 2));
}

void useCopy(const Copy& copy, const char* device) {
    IN_COPY(copy, HW_Initialize)();
    std::printf("copy opened %d\n", IN_COPY(copy, HW_Open)(device));
    IN_COPY(copy, HW_SetDefault_PHY_ID)(9);
    IN_COPY(copy, HW_EnableLoggingStderr)();
    const unsigned adapter = IN_COPY(copy, HW_GetDefaultAdapter)();
    std::printf("copy read %04X\n", IN_COPY(copy, HW_Read_Abstracted)(adapter, 3, 1, 2));
    IN_COPY(copy, HW_Read_Abstracted)(2999, 3, 1, 2);
    std::printf("copy failed %d: %s\n", IN_COPY(copy, HW_Fail)(), IN_COPY(copy, HW_Error)());
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4)
        return 2;
    HW_Initialize();
    std::printf("opened %d\n", HW_Open(argv[2]));
    HW_SetDelegationType(3, HW_GetDefaultAdapter(), 0);
    HW_SetDefault_PHY_ID(4);
    show("alone");
    {
        const Copy copy(argv[1]);
        show("loaded");
        useCopy(copy, argv[3]);
        show("used");
    }
    show("unloaded");
    return 0;
}

// What work writes to a stream.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "tools/orvane/output/Console.h"

#include <array>
#include <functional>
#include <string>
#include <sys/mman.h>

namespace OrvaneTest {

inline std::string printedBy(const std::function<void(OrvaneTool::Stream&)>& work) {
    const Orvane::FileDescriptor memory(::memfd_create("output", MFD_CLOEXEC));
    OrvaneTool::Stream stream(memory.get());
    work(stream);
    stream.flush();
    std::array<char, 4096> room{};
    const ssize_t count = ::pread(memory.get(), room.data(), room.size(), 0);
    return {room.data(), static_cast<std::size_t>(count)};
}

} // namespace OrvaneTest

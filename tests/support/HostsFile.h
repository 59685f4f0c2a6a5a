// Host names for one test.
#pragma once

#include <string>

namespace OrvaneTest {

// While one lives, `text` is /etc/hosts for this process. Throws std::system_error.
class HostsFile {
public:
    explicit HostsFile(const std::string& text);
    ~HostsFile();
    HostsFile(const HostsFile&) = delete;
    HostsFile& operator=(const HostsFile&) = delete;
};

} // namespace OrvaneTest

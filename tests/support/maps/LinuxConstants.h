// The constants of a C header that programs have for registers, and their values.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace OrvaneTest {

class LinuxConstants {
public:
    // Reads every #define of a header, but not those without a value, as its guard.
    void read(const std::string& path);
    // In the order of the headers.
    const std::vector<std::string>& names() const { return names_; }
    // None: a macro with arguments, or nothing known.
    std::optional<std::uint64_t> value(const std::string& name) const;

private:
    struct Definition {
        bool isFunction = false;
        std::string text;
    };
    std::vector<std::string> names_;
    std::map<std::string, Definition> definitions_;
};

} // namespace OrvaneTest

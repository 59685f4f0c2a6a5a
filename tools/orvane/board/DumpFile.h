// Files of register values.
#pragma once

#include "tools/orvane/board/RegisterAddress.h"

#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace OrvaneTool {

// What a dump was taken of.
struct DumpHeader {
    std::string device;
    unsigned phy = 0;
    Space space = Space::C45;
    std::string ranges; // as given, separated by blanks

    // The lines at the beginning of the file.
    std::string text() const;
};

struct Dump {
    DumpHeader header;
    std::map<Register, std::uint32_t> values;
};

// Reads a complete dump. Throws Failure, naming file and line.
Dump readDump(const std::string& path);

// A dump that is being made, in a file of its own (".part" behind the name) until it is complete. What an
// earlier, broken-off attempt at the same dump left there counts.
class DumpWriter {
public:
    // Throws Failure when the file exists, or a part of another dump does, unless `force` is set.
    DumpWriter(std::string path, const DumpHeader& header, bool force);

    // Registers that an earlier attempt has written.
    std::size_t resumedAt() const { return resumedAt_; }
    // Adds values and makes sure that they are in the file. Throws Failure.
    void add(const std::vector<Register>& list, const std::vector<std::uint32_t>& values);
    // Gives the file its name.
    void complete();

private:
    // The bytes of a part that are good: its header and whole lines. 0 when it is of another dump.
    std::size_t goodBytes(const std::string& content, const std::string& header);
    [[noreturn]] void fail(const std::string& cause) const;

    std::string path_;
    std::string part_;
    std::size_t resumedAt_ = 0;
    std::ofstream file_;
};

} // namespace OrvaneTool

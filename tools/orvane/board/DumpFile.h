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
    std::string version;    // of the program that took it
    std::string date;       // UTC
    std::string device;     // OV0001:0
    std::string address;    // of its board
    unsigned phy = 0;       // PHY id
    std::string identifier; // of the PHY, 0x00112233; empty: not known
    std::string maps;       // that knew names, with commas between them
    Space space = Space::C45;
    std::string ranges; // as given, separated by blanks

    // The lines at the beginning of the file.
    std::string text() const;
    // Whether it is the same dump, though taken at another time and place.
    bool isSame(const DumpHeader& other) const;
};

// Version and time as they are now.
DumpHeader newHeader();

struct Dump {
    DumpHeader header;
    std::map<Register, std::uint32_t> values;
    std::map<Register, std::uint32_t> masks; // of those whose line says which bits count

    // The bits that are compared.
    std::uint32_t maskOf(const Register& reg) const;
};

// Whether a file begins as a dump does; false for what is no file or cannot be read.
bool isDump(const std::string& path);
// Reads a complete dump. Throws Failure, naming file and line.
Dump readDump(const std::string& path);

// What is there already of a dump that is asked for.
enum class DumpState { New, Complete, Other };
DumpState stateOf(const std::string& path, const DumpHeader& header);

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
    std::size_t goodBytes(const std::string& content, const DumpHeader& header);
    [[noreturn]] void fail(const std::string& cause) const;

    std::string path_;
    std::string part_;
    std::size_t resumedAt_ = 0;
    std::ofstream file_;
};

// The lines of values as they stand in a dump.
std::string valueLines(const std::vector<Register>& list, const std::vector<std::uint32_t>& values);

} // namespace OrvaneTool

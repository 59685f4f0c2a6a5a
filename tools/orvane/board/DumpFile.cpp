// Dumps as text: a header in comments, then a line for each register.
#include "tools/orvane/board/DumpFile.h"

#include "tools/orvane/board/Bits.h"
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fmt/format.h>
#include <iterator>
#include <sstream>

namespace OrvaneTool {
namespace {

constexpr const char* kTitle = "# orvane dump 1";

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// "# key value" into the header.
void takeHeaderLine(const std::string& line, DumpHeader& header) {
    std::istringstream words(line);
    std::string sign;
    std::string key;
    std::string value;
    words >> sign >> key >> std::ws;
    std::getline(words, value);
    if (key == "device")
        header.device = value;
    else if (key == "phy")
        header.phy = numberAs<unsigned>(value, 127, "the PHY");
    else if (key == "space")
        header.space = spaceNamed(value);
    else if (key == "ranges")
        header.ranges = value;
}

void takeValueLine(const std::string& line, Dump& dump) {
    const std::size_t blank = line.find(' ');
    if (blank == std::string::npos)
        throw UsageError("there is no value");
    const std::vector<Register> reg = parseRegisters(line.substr(0, blank), dump.header.space);
    dump.values[reg.front()] = numberAs<std::uint32_t>(line.substr(blank + 1), 0xFFFFFFFF, "the value");
}

} // namespace

std::string DumpHeader::text() const {
    return fmt::format("{}\n# device {}\n# phy {}\n# space {}\n# ranges {}\n", kTitle, device, phy,
                       nameOf(space), ranges);
}

Dump readDump(const std::string& path) {
    std::ifstream file(path);
    if (!file)
        throw Failure(fmt::format("{}: cannot read: {}", path, errorText(errno)));
    Dump dump;
    std::string line;
    for (unsigned number = 1; std::getline(file, line); ++number) {
        try {
            if (number == 1 && line != kTitle)
                throw UsageError("this is no dump");
            if (line[0] == '#')
                takeHeaderLine(line, dump.header);
            else
                takeValueLine(line, dump);
        } catch (const UsageError& problem) {
            throw Failure(fmt::format("{}:{}: {}", path, number, problem.what()));
        }
    }
    if (dump.values.empty())
        throw Failure(fmt::format("{}: there are no values in it", path));
    return dump;
}

DumpWriter::DumpWriter(std::string path, const DumpHeader& header, bool force)
    : path_(std::move(path)), part_(path_ + ".part") {
    namespace fs = std::filesystem;
    if (fs::exists(path_) && !force)
        fail("it exists; --force overwrites it");
    const std::string content = contentOf(part_);
    const std::size_t good = goodBytes(content, header.text());
    if (good == 0 && !content.empty() && !force)
        throw Failure(fmt::format("{}: a part of another dump is there; --force overwrites it", part_));
    if (good > 0)
        fs::resize_file(part_, good);
    file_.open(part_, good > 0 ? std::ios::app : std::ios::trunc);
    if (good == 0)
        file_ << header.text();
    if (!file_.flush())
        fail(errorText(errno));
}

std::size_t DumpWriter::goodBytes(const std::string& content, const std::string& header) {
    if (content.compare(0, header.size(), header) != 0)
        return 0;
    const std::size_t end = content.rfind('\n') + 1;
    resumedAt_ =
        static_cast<std::size_t>(std::count(content.begin() + static_cast<std::ptrdiff_t>(header.size()),
                                            content.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
    return end;
}

void DumpWriter::add(const std::vector<Register>& list, const std::vector<std::uint32_t>& values) {
    for (std::size_t i = 0; i < list.size(); ++i)
        file_ << list[i].text() << ' ' << hexText(values[i], list[i].space) << '\n';
    if (!file_.flush())
        fail(errorText(errno));
}

void DumpWriter::complete() {
    file_.close();
    std::error_code problem;
    std::filesystem::rename(part_, path_, problem);
    if (problem)
        fail(problem.message());
}

void DumpWriter::fail(const std::string& cause) const {
    throw Failure(fmt::format("{}: cannot write: {}", path_, cause));
}

} // namespace OrvaneTool

// Dumps as text: a header in comments, then a line for each register.
#include "tools/orvane/board/DumpFile.h"

#include "tools/orvane/board/Bits.h"
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <fmt/format.h>
#include <iterator>
#include <sstream>
#include <utility>

namespace OrvaneTool {
namespace {

constexpr const char* kTitle = "# orvane dump 2";
constexpr const char* kOldTitle = "# orvane dump 1"; // with less in its header

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
    const std::pair<const char*, std::string*> texts[] = {
        {"version", &header.version},       {"date", &header.date},
        {"device", &header.device},         {"address", &header.address},
        {"identifier", &header.identifier}, {"maps", &header.maps},
        {"ranges", &header.ranges}};
    for (const auto& [name, text] : texts)
        if (key == name)
            *text = value;
    if (key == "phy")
        header.phy = numberAs<unsigned>(value, 127, "the PHY");
    if (key == "space")
        header.space = spaceNamed(value);
}

bool isTitle(const std::string& line) {
    return line == kTitle || line == kOldTitle;
}

// The header that a text begins with, and how long it is.
std::pair<DumpHeader, std::size_t> headerOf(const std::string& content) {
    DumpHeader header;
    std::size_t at = 0;
    while (at < content.size() && content[at] == '#') {
        const std::size_t end = content.find('\n', at);
        if (end == std::string::npos)
            break;
        takeHeaderLine(content.substr(at, end - at), header);
        at = end + 1;
    }
    return {std::move(header), at};
}

void takeValueLine(const std::string& line, Dump& dump) {
    const std::size_t blank = line.find(' ');
    if (blank == std::string::npos)
        throw UsageError("there is no value");
    const std::vector<Register> reg = parseRegisters(line.substr(0, blank), dump.header.space);
    const std::string rest = line.substr(blank + 1);
    const std::size_t next = rest.find(' ');
    dump.values[reg.front()] = numberAs<std::uint32_t>(rest.substr(0, next), 0xFFFFFFFF, "the value");
    if (next != std::string::npos)
        dump.masks[reg.front()] = numberAs<std::uint32_t>(rest.substr(next + 1), 0xFFFFFFFF, "the mask");
}

} // namespace

std::string DumpHeader::text() const {
    std::string known;
    if (!identifier.empty())
        known += fmt::format("# identifier {}\n", identifier);
    if (!maps.empty())
        known += fmt::format("# maps {}\n", maps);
    return fmt::format(
        "{}\n# version {}\n# date {}\n# device {}\n# address {}\n# phy {}\n{}# space {}\n# ranges {}\n",
        kTitle, version, date, device, address, phy, known, nameOf(space), ranges);
}

bool DumpHeader::isSame(const DumpHeader& other) const {
    const bool sameKind = identifier.empty() || other.identifier.empty() || identifier == other.identifier;
    return sameKind && device == other.device && phy == other.phy && space == other.space &&
           ranges == other.ranges;
}

DumpHeader newHeader() {
    DumpHeader header;
    header.version = ORVANE_VERSION;
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    ::gmtime_r(&now, &utc);
    header.date = fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", utc.tm_year + 1900, utc.tm_mon + 1,
                              utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec);
    return header;
}

std::uint32_t Dump::maskOf(const Register& reg) const {
    const auto found = masks.find(reg);
    return found == masks.end() ? ~std::uint32_t{0} : found->second;
}

bool isDump(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    return std::filesystem::is_regular_file(path) && std::getline(file, line) && isTitle(line);
}

Dump readDump(const std::string& path) {
    std::ifstream file(path);
    if (!file)
        throw Failure(fmt::format("{}: cannot read: {}", path, errorText(errno)));
    Dump dump;
    std::string line;
    for (unsigned number = 1; std::getline(file, line); ++number) {
        try {
            if (number == 1 && !isTitle(line))
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

DumpState stateOf(const std::string& path, const DumpHeader& header) {
    if (!std::filesystem::exists(path))
        return DumpState::New;
    const std::string content = contentOf(path);
    return isTitle(content.substr(0, content.find('\n'))) && headerOf(content).first.isSame(header)
               ? DumpState::Complete
               : DumpState::Other;
}

DumpWriter::DumpWriter(std::string path, const DumpHeader& header, bool force)
    : path_(std::move(path)), part_(path_ + ".part") {
    namespace fs = std::filesystem;
    if (fs::exists(path_) && !force)
        fail("it exists; --force overwrites it");
    const std::string content = contentOf(part_);
    const std::size_t good = goodBytes(content, header);
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

std::size_t DumpWriter::goodBytes(const std::string& content, const DumpHeader& header) {
    if (content.rfind(kTitle, 0) != 0)
        return 0;
    const auto [found, length] = headerOf(content);
    const std::size_t end = content.rfind('\n') + 1;
    if (!found.isSame(header) || end < length)
        return 0;
    resumedAt_ =
        static_cast<std::size_t>(std::count(content.begin() + static_cast<std::ptrdiff_t>(length),
                                            content.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
    return end;
}

void DumpWriter::add(const std::vector<Register>& list, const std::vector<std::uint32_t>& values) {
    file_ << valueLines(list, values);
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

std::string valueLines(const std::vector<Register>& list, const std::vector<std::uint32_t>& values) {
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i)
        text += fmt::format("{} {}\n", list[i].text(), hexText(values[i], list[i].space));
    return text;
}

} // namespace OrvaneTool

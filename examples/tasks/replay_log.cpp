// Plays the writes of a transaction log back and compares its reads: replay_log [LOG].
#include <cstdio>
#include <fstream>
#include <iostream>
#include <orvane/orvane.hpp>
#include <sstream>
#include <string>

namespace {

constexpr const char* kSample = "adapter,phy,op,mmd,address,value,\n"
                                "0,3,MW,1E,C010,CAFE\n"
                                "0,3,MR,1E,C010,CAFE\n"
                                "0,3,MR,01,0002,0A5C\n"
                                "0,3,MR,01,0003,FFFF\n";

struct Counts {
    unsigned writes = 0;
    unsigned reads = 0;
    unsigned different = 0;
};

// One 16-bit record. 32-bit records have no line ends: a log with them cannot be replayed.
struct Record {
    unsigned adapter = 0;
    unsigned phy = 0;
    std::string operation;
    unsigned mmd = 0;
    unsigned address = 0;
    unsigned value = 0;
};

// Adapter and PHY are decimal, the rest is hexadecimal. False for the headers and for what carries no value.
bool parse(const std::string& line, Record& record) {
    std::istringstream fields(line);
    char comma = 0;
    std::string mmd;
    std::string address;
    std::string value;
    fields >> record.adapter >> comma >> record.phy >> comma;
    std::getline(fields, record.operation, ',');
    std::getline(fields, mmd, ',');
    std::getline(fields, address, ',');
    if (!std::getline(fields, value) || mmd.empty() || value.empty())
        return false;
    record.mmd = static_cast<unsigned>(std::stoul(mmd, nullptr, 16));
    record.address = static_cast<unsigned>(std::stoul(address, nullptr, 16));
    record.value = static_cast<unsigned>(std::stoul(value, nullptr, 16));
    return true;
}

void replay(Orvane::HWInterface& boards, const Record& record, Counts& counts) {
    if (record.operation == "MW") {
        boards.writeAdapter(record.adapter, record.phy, record.mmd, record.address, record.value);
        ++counts.writes;
    } else if (record.operation == "MR") {
        const unsigned value = boards.readAdapter(record.adapter, record.phy, record.mmd, record.address);
        ++counts.reads;
        if (value != record.value) {
            ++counts.different;
            std::printf("MMD %u register 0x%04X: 0x%04X, was 0x%04X\n", record.mmd, record.address, value,
                        record.value);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        std::stringstream log;
        argc > 1 ? log << std::ifstream(argv[1]).rdbuf() : log << kSample;
        Orvane::HWInterface boards;
        boards.numberOfDevices(); // adapter numbers are places in the list of devices
        Counts counts;
        Record record;
        for (std::string line; std::getline(log, line);) {
            if (!parse(line, record))
                continue;
            boards.openAdapter(record.adapter);
            replay(boards, record, counts);
        }
        std::printf("%u writes, %u reads, %u differ\n", counts.writes, counts.reads, counts.different);
        return 0;
    } catch (const std::exception& problem) {
        std::cerr << "failed: " << problem.what() << '\n';
        return 1;
    }
}

// The text of every record of the transaction log.
#include "tests/support/capi/FlatInterface.h"
#include "tests/support/NamedParam.h"
#include "tests/support/WrittenText.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <thread>

namespace OrvaneTest {
namespace {

constexpr unsigned long long kLong = 0x0123456789ABCDEFULL;

struct Record {
    std::string name;
    void (*write)();
    std::string text;
};

const Record kMdio[] = {
    {"MDIOWrite", [] { HW_Logging_MDIOWrite(0, 3, 1, 0, 0x1234); }, "0,3,MW,01,0000,1234\n"},
    {"MDIOWriteOfGreatValues",
     [] { HW_Logging_MDIOWrite(4294967295U, 2147680262U, 0x11F, 0xFFFFF, 0xABCDEF); },
     "4294967295,2147680262,MW,11F,FFFFF,ABCDEF\n"},
    {"MDIORead", [] { HW_Logging_MDIORead(12, 31, 0x1E, 0xC47F, 0xA); }, "12,31,MR,1E,C47F,000A\n"},
    {"BlockMDIOWrite", [] { HW_Logging_BlockMDIOWrite(0, 3, 0xA, 0xBC, 0xD); }, "0,3,AW,0A,00BC,000D\n"},
    {"BlockMDIORead", [] { HW_Logging_BlockMDIORead(0, 3, 0xA, 0xBC); }, "0,3,AR,0A,00BC,\n"},
    {"BlockMDIOFetch", [] { HW_Logging_BlockMDIOFetch(0, 3, 7, 8, 9, 0xBEEF); }, "0,3,AF,,,BEEF\n"},
};

const Record k32Bit[] = {
    {"Write32", [] { HW_Logging_Write32(0, 3, 0xABC, 0xDEF); }, "0,3,MW,000ABC,00000DEF"},
    {"Write32OfGreatValues", [] { HW_Logging_Write32(0, 3, 0xFEDCBA98, 0xFFFFFFFF); },
     "0,3,MW,FEDCBA98,FFFFFFFF"},
    {"Read32", [] { HW_Logging_Read32(0, 3, 0xABC, 0xDEF); }, "0,3,MR,000ABC,00000DEF"},
    {"BlockWrite32", [] { HW_Logging_BlockWrite32(0, 3, 0xABC, 0xDEF); }, "0,3,AW,000ABC,00000DEF"},
    {"BlockRead32", [] { HW_Logging_BlockRead32(0, 3, 0xA); }, "0,3,AR,,0A,"},
    {"BlockRead32OfAGreatAddress", [] { HW_Logging_BlockRead32(0, 3, 0xFEDCBA98); }, "0,3,AR,,FEDCBA98,"},
    {"BlockFetch32", [] { HW_Logging_BlockFetch32(0, 3, 7, 8, 0xDEF); }, "0,3,AF,,,00000DEF"},
};

const Record k64Bit[] = {
    {"Write64", [] { HW_Logging_Write64(0, 3, 0xABC, kLong); }, "0,3,MW,000ABC,0123456789ABCDEF"},
    {"Read64", [] { HW_Logging_Read64(0, 3, 0xABC, 0xFFFFFFFFFFFFFFFFULL); },
     "0,3,MR,000ABC,FFFFFFFFFFFFFFFF"},
    {"BlockWrite64", [] { HW_Logging_BlockWrite64(0, 3, 0xABC, 1); }, "0,3,AW,000ABC,0000000000000001"},
    {"BlockRead64", [] { HW_Logging_BlockRead64(0, 3, 0xA); }, "0,3,AR,,0A,"},
    {"BlockFetch64", [] { HW_Logging_BlockFetch64(0, 3, 7, 8, kLong); }, "0,3,AF,,,0123456789ABCDEF"},
};

const Record kConfigurationSpace[] = {
    {"MacConfigSpaceWrite", [] { HW_Logging_MacConfigSpaceWrite(9, 1, 0xAB, 0xFFFFFFFF); },
     "9,CW,00000001,000000AB,FFFFFFFF"},
    {"MacConfigSpaceRead", [] { HW_Logging_MacConfigSpaceRead(9, 1, 0xAB); }, "9,CR,00000001,000000AB"},
    {"BlockMacConfigSpaceRead", [] { HW_Logging_BlockMacConfigSpaceRead(9, 0xAB); }, "9,ACR,000000AB,"},
    {"BlockMacConfigSpaceWrite", [] { HW_Logging_BlockMacConfigSpaceWrite(9, 1, 0xAB, 2); },
     "9,ACW,00000001,000000AB,00000002"},
};

class LogRecord : public testing::TestWithParam<Record> {
protected:
    LogRecord() { HW_DisableLogging(0); }
};

TEST_P(LogRecord, HasItsColumns) {
    LogInMemory log;
    GetParam().write();
    EXPECT_EQ(log.text(), GetParam().text);
}

TEST_P(LogRecord, IsNotWrittenWhileLoggingIsOff) {
    const WrittenText text = textWritten(GetParam().write);
    EXPECT_EQ(text.output + text.error, "");
}

INSTANTIATE_TEST_SUITE_P(Mdio, LogRecord, testing::ValuesIn(kMdio), NamedParam());
INSTANTIATE_TEST_SUITE_P(Of32Bits, LogRecord, testing::ValuesIn(k32Bit), NamedParam());
INSTANTIATE_TEST_SUITE_P(Of64Bits, LogRecord, testing::ValuesIn(k64Bit), NamedParam());
INSTANTIATE_TEST_SUITE_P(ConfigurationSpace, LogRecord, testing::ValuesIn(kConfigurationSpace), NamedParam());

// What stands in a log behind its header.
std::string recordsIn(std::FILE* file) {
    std::string text(static_cast<std::size_t>(std::ftell(file)), '\0');
    std::rewind(file);
    text.resize(std::fread(text.data(), 1, text.size(), file));
    return text.substr(text.find('\n') + 1);
}

TEST(LogRecords, OfSeveralThreadsStayWhole) {
    constexpr int kRecords = 2000;
    std::FILE* file = std::tmpfile();
    HW_EnableLogging(file);
    const auto writeMany = [](unsigned phy) {
        for (int i = 0; i < kRecords; ++i)
            HW_Logging_MDIOWrite(phy, phy, phy, phy, phy);
    };
    std::thread other(writeMany, 1);
    writeMany(2);
    other.join();
    HW_DisableLogging(0);
    const std::string text = recordsIn(file);
    std::fclose(file);
    int ones = 0;
    int twos = 0;
    for (std::size_t at = 0; at < text.size(); at += 20) {
        ones += text.compare(at, 20, "1,1,MW,01,0001,0001\n") == 0 ? 1 : 0;
        twos += text.compare(at, 20, "2,2,MW,02,0002,0002\n") == 0 ? 1 : 0;
    }
    EXPECT_EQ(ones, kRecords);
    EXPECT_EQ(twos, kRecords);
}

} // namespace
} // namespace OrvaneTest

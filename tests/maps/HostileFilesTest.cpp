// Files made to hurt: each ends in an error within a second and 64 MiB.
#include "tests/support/maps/MapTexts.h"

#include <chrono>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMeasured = false; // a sanitizer takes memory and time of its own
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kMeasured = false;
#else
constexpr bool kMeasured = true;
#endif
#else
constexpr bool kMeasured = true;
#endif

long peakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// Parses in this process; the test runner gives each test one of its own. The text counts as the caller's.
std::string parseError(const std::string& text) {
    const long before = peakKilobytes();
    const double start = processorSeconds();
    std::string error = "none";
    try {
        RegisterMap::parse(text);
    } catch (const MapError& problem) {
        error = problem.what();
    }
    if (kMeasured) {
        EXPECT_LT(processorSeconds() - start, 1.0);
        EXPECT_LT(peakKilobytes() - before, 64 * 1024);
    }
    return error;
}

std::string repeated(const std::string& piece, std::size_t bytes) {
    std::string all;
    all.reserve(bytes + piece.size());
    while (all.size() < bytes)
        all += piece;
    return all;
}

constexpr std::size_t kSize = (std::size_t{8} << 20U) - 4096; // just within the limit of a file

TEST(HostileFile, OfDeepNestingEnds) {
    EXPECT_NE(parseError(std::string(kSize, '[')).find("deeper within each other than 32"),
              std::string::npos);
    EXPECT_NE(parseError(repeated("{\"a\":", kSize)).find("deeper within each other than 32"),
              std::string::npos);
}

TEST(HostileFile, OfMillionsOfValuesEnds) {
    EXPECT_NE(parseError("[" + repeated("0,", kSize) + "0]").find("there are more values"),
              std::string::npos);
}

TEST(HostileFile, LargerThanTheLimitEnds) {
    EXPECT_NE(parseError(std::string(kSize + 8192, ' ')).find("is larger than 8 MiB"), std::string::npos);
}

TEST(HostileFile, OfABillionElementsEnds) {
    EXPECT_EQ(parseError(mapText(R"("registers": {"R": {"at": "ext32:0", "count": 1000000000}})")),
              "map:1: registers.R.count: has to be from 1 to 131072");
}

TEST(HostileFile, OfElementsWithinElementsEnds) {
    std::string members = R"("registers": {"R": {"at": 0, "count": 1000}})";
    for (int i = 0; i < 7; ++i)
        members = R"("blocks": {"B": {"at": 0, "count": 1000, "stride": 4000, )" + members + "}}";
    EXPECT_NE(parseError(mapText(R"("blocks": {"T": {"at": "ext32:0", )" + members + "}}"))
                  .find("more registers than 131072"),
              std::string::npos);
}

TEST(HostileFile, OfEmptyBlocksWithinBlocksEnds) {
    std::string members = R"("text": "")";
    for (int i = 0; i < 7; ++i)
        members = R"("blocks": {"B": {"at": 0, "count": 100000, )" + members + "}}";
    EXPECT_NE(parseError(mapText(R"("blocks": {"T": {"at": "ext32:0", )" + members + "}}"))
                  .find("more blocks than 131072"),
              std::string::npos);
}

TEST(HostileFile, OfRegistersAllAtOneAddressEnds) {
    EXPECT_NE(parseError(mapText(R"("registers": {"R": {"at": "7.1", "count": 131072, "stride": 0}})"))
                  .find("beyond the last"),
              std::string::npos);
    std::string registers;
    for (int i = 0; i < 90000; ++i)
        registers += (i > 0 ? ", \"R" : "\"R") + std::to_string(i) + "\": {\"at\": \"7.1\"}";
    EXPECT_NE(parseError(mapText("\"registers\": {" + registers + "}")).find("and 89799 more"),
              std::string::npos);
}

TEST(HostileFile, OfManyWrongMembersEnds) {
    std::string members;
    for (int i = 0; i < 390000; ++i)
        members += (i > 0 ? ",\"" : "\"") + std::to_string(i) + "\":0";
    EXPECT_NE(parseError(mapText(members)).find("more"), std::string::npos);
    EXPECT_NE(parseError(mapText("\"registers\": {\"R\": {\"at\": \"7.1\", \"fields\": {" + members + "}}}"))
                  .find("more"),
              std::string::npos);
}

// Registers with sixteen fields each, and one without an address.
std::string errorOfFields(int registerCount) {
    std::string registers;
    for (int i = 0; i < registerCount; ++i) {
        registers += "\"R" + std::to_string(i) + "\":{\"at\":" + std::to_string(i) + ",\"fields\":{";
        for (int bit = 0; bit < 16; ++bit)
            registers +=
                "\"F" + std::to_string(bit) + "\":" + std::to_string(bit) + (bit == 15 ? "}}," : ",");
    }
    registers += "\"X\": {}";
    return parseError(mapText(R"("blocks": {"B": {"at": "30.0", "registers": {)" + registers + "}}}"));
}

TEST(HostileFile, OfAsManyFieldsAsAMapMayHaveEnds) {
    EXPECT_EQ(errorOfFields(4096), "map:1: blocks.B.registers.X: 'at' is missing");
}

TEST(HostileFile, OfManyFieldsEnds) {
    EXPECT_EQ(errorOfFields(20000).substr(0, 84),
              "map:1: blocks.B.registers.R4096.fields.F0: is one field more than the 65536 of a map");
}

TEST(HostileFile, OfOneRegisterMoreThanTheFieldsOfAMapReachEnds) {
    EXPECT_EQ(errorOfFields(4097).substr(0, 84),
              "map:1: blocks.B.registers.R4096.fields.F0: is one field more than the 65536 of a map");
}

TEST(HostileFile, OfHugeNumbersEnds) {
    EXPECT_NE(parseError(mapText(R"("registers": {"R": {"at": "7.)" + std::string(1000000, '9') + R"("}})"))
                  .find("is no address"),
              std::string::npos);
    EXPECT_NE(parseError(mapText("\"registers\": {\"R\": {\"at\": \"7.1\", \"reset\": 1e999999999}}"))
                  .find("whole number"),
              std::string::npos);
}

TEST(HostileFile, OfHostileNamesIsShownHarmlessly) {
    const std::string error = parseError(
        mapText("\"registers\": {\"\\u001b[31m" + std::string(1000, 'x') + "\": {\"at\": \"7.1\"}}"));
    EXPECT_EQ(error.find('\x1B'), std::string::npos);
    EXPECT_LT(error.size(), 300U);
}

TEST(HostileFile, OfManyOverridesEnds) {
    std::string overrides;
    for (int i = 0; i < 30000; ++i)
        overrides += R"({"identifier":"1","blocks":{"B":{"registers":{"R":{"reset":1}}}}},)";
    EXPECT_NE(
        parseError(mapText(R"("blocks": {"B": {"at": "30.0", "registers": {"R": {"at": 0, "text": ")" +
                           std::string(4000, 'x') + R"("}}}}, "overrides": [)" + overrides + "{\"x\": 0}]"))
            .find("is not known here"),
        std::string::npos);
}

} // namespace
} // namespace OrvaneTest

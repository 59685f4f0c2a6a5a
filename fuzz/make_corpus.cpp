// Writes the seeds of every fuzz target, made from the record samples, below the folder that it is given.
#include "tests/support/RecordSamples.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace {

std::filesystem::path root;

void seed(const std::string& target, const std::string& name, const WireBytes& bytes) {
    std::filesystem::create_directories(root / target);
    std::ofstream file(root / target / name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.flush();
    if (!file)
        throw std::runtime_error("cannot write " + name);
}

WireBytes joined(std::initializer_list<WireBytes> parts) {
    WireBytes all;
    for (const WireBytes& part : parts)
        append(all, part);
    return all;
}

WireBytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

// An accepted call's reply.
WireBytes reply(unsigned id, const WireBytes& result) {
    WireBytes bytes;
    for (const unsigned word : {id, 1U, 0U, 0U, 0U, 0U})
        appendWord(bytes, word);
    append(bytes, result);
    return bytes;
}

WireBytes record(const WireBytes& message) {
    WireBytes bytes;
    appendWord(bytes, 0x80000000U | static_cast<unsigned>(message.size()));
    append(bytes, message);
    return bytes;
}

WireBytes datagram(unsigned char flags, const WireBytes& message) {
    return joined({{flags, static_cast<unsigned char>(message.size() >> 8U),
                    static_cast<unsigned char>(message.size() & 0xFFU)},
                   message});
}

void seedRecords() {
    const auto& samples = recordSamples();
    for (std::size_t i = 0; i < samples.size(); ++i)
        for (const unsigned capacity : {0U, 2U}) {
            WireBytes bytes{static_cast<unsigned char>(i), static_cast<unsigned char>(capacity)};
            append(bytes, samples[i].bytes());
            seed("records", samples[i].name + (capacity == 0 ? "" : "-announced"), bytes);
        }
}

// The results in the order in which the target lists its stubs.
void seedReplies() {
    const std::vector<WireBytes> results{sampleOf<Open_Result>().bytes(),
                                         sampleOf<Simple_Result>().bytes(),
                                         sampleOf<Get_Error_Result>().bytes(),
                                         wire("0000007b"),
                                         sampleOf<Command_Result>().bytes(),
                                         sampleOf<MDIO_Read_Result>().bytes(),
                                         sampleOf<MDIO_Result>().bytes(),
                                         sampleOf<MDIO_Read_Result_Single>().bytes(),
                                         sampleOf<I2C_Read_Result>().bytes(),
                                         sampleOf<GPIO_Read_Result>().bytes(),
                                         sampleOf<JTAG_ShiftMulti_Result>().bytes(),
                                         sampleOf<ADC_Result>().bytes(),
                                         sampleOf<ADC_Data>().bytes(),
                                         sampleOf<ADC_Max_Result>().bytes(),
                                         sampleOf<ADC_EventData>().bytes(),
                                         sampleOf<THRM_Result>().bytes(),
                                         sampleOf<THRM_State>().bytes(),
                                         sampleOf<THRM_Get_Temp>().bytes()};
    for (std::size_t i = 0; i < results.size(); ++i)
        seed("replies", "result" + std::to_string(i),
             joined({{static_cast<unsigned char>(i)}, reply(7, results[i])}));
    seed("replies", "denied", joined({{0}, wire("00000007 00000001 00000001 00000001 00000005")}));
    seed("replies", "neither-accepted-nor-denied",
         joined({{0}, wire("00000007 00000001 00000002 00000000 00000000 00000000")}));
    seed("replies", "mismatch",
         joined({{0},
                 wire("00000007 00000001 00000000 00000000 00000000 00000002"
                      "00000001 00000003")}));
    seed("replies", "verifier",
         joined({{5},
                 wire("00000007 00000001 00000000 00000001 00000004 61626364"
                      "00000000 00000000 00000000")}));
}

void seedTransports() {
    const WireBytes good = reply(7, sampleOf<MDIO_Read_Result>().bytes());
    const WireBytes foreign = reply(6, sampleOf<MDIO_Read_Result>().bytes());
    const WireBytes second = reply(8, sampleOf<MDIO_Read_Result>().bytes());
    seed("stream", "one-record", joined({{0}, record(good)}));
    seed("stream", "two-records", joined({{1}, record(good), record(second)}));
    seed("stream", "foreign-first", joined({{0}, record(foreign), record(good)}));
    seed("stream", "fragments", joined({{0}, wire("00000004 00000007 80000004 00000001")}));
    seed("stream", "no-mark", joined({{0}, wire("00000000 00000000")}));
    seed("stream", "endless", joined({{0}, wire("ffffffff 00000007")}));
    seed("datagrams", "own", datagram(1, good));
    seed("datagrams", "foreign", joined({datagram(0, foreign), datagram(0, {}), datagram(0, {1, 2, 3})}));
    seed("datagrams", "short", datagram(1, wire("00000007 00000001")));
    seed("datagrams", "long", datagram(1, reply(7, WireBytes(8950, 0))));
}

void seedRack() {
    const WireBytes read = reply(7, sampleOf<MDIO_Read_Result>().bytes());
    const auto values = static_cast<unsigned char>((read.size() - 32) / 4);
    seed("rack", "read", joined({{0, values}, read}));
    seed("rack", "read-refused", joined({{0, 1}, reply(7, wire("fffffffb 00000000"))}));
    seed("rack", "read-too-many", joined({{0, 1}, reply(7, wire("00000000 00000002 00000001 00000002"))}));
    seed("rack", "opened", joined({{0, 0}, reply(7, sampleOf<Open_Result>().bytes())}));
    seed("rack", "port", joined({{0, 0}, reply(7, wire("0000c000"))}));
    seed("rack", "stream", joined({{1}, record(read), record(reply(8, sampleOf<Open_Result>().bytes()))}));
    seed("rack", "fragments", joined({{1}, wire("00000004 00000007 80000004 00000001")}));
    seed("rack", "endless", joined({{1}, wire("ffffffff 00000007")}));
    seed("rack", "announcement", bytesOf("\2|host OV0001:0 OV0001:10 ov2:3"));
    seed("rack", "bad-port", bytesOf("\2|host OV0001:20"));
}

void seedNames() {
    seed("names", "replies", joined({bytesOf(std::string("\0\5OV01A\16", 8)), bytesOf("ov01a|host x:1\n")}));
    seed("names", "device", bytesOf("\1OV0001:1"));
    seed("names", "two-colons", bytesOf("\1OV:0001:1"));
    seed("names", "large-port", bytesOf("\1B: 99999999999999999999"));
    seed("names", "split", bytesOf("\2\1 a b  c"));
}

} // namespace

int main(int argc, char** argv) try {
    if (argc != 2) {
        std::fputs("usage: make_corpus FOLDER\n", stderr);
        return 2;
    }
    root = argv[1];
    seedRecords();
    seedReplies();
    seedTransports();
    seedNames();
    seedRack();
    return 0;
} catch (const std::exception& problem) {
    std::fprintf(stderr, "%s\n", problem.what());
    return 1;
}

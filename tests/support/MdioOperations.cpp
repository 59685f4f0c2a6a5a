// The table of the operations, and the records that they send.
#include "tests/support/MdioOperations.h"

#include "ov_sys/Interface/buses/MDIO.h"
#include "tests/support/SessionOnBoard.h"

namespace OrvaneTest {

using nlohmann::ordered_json;
using Orvane::mdio;
using Orvane::SessionWrapper;

ordered_json readParam(unsigned int handle, const Words& addresses) {
    return {{"handle", handle}, {"addresses", addresses}};
}

ordered_json writeParam(unsigned int handle, const Words& addresses, const Words& values) {
    return {{"handle", handle}, {"int1", 0}, {"addresses", addresses}, {"values", values}};
}

ordered_json mixedParam(unsigned int handle, const Words& writeData, const Words& writeAddresses,
                        const Words& readAddresses, const Words& runs) {
    return {{"handle", handle},
            {"writeData", writeData},
            {"writeAddresses", writeAddresses},
            {"readAddresses", readAddresses},
            {"runs", runs}};
}

void prepareRegisters(OrvaneSim::Board& board) {
    using OrvaneSim::Space;
    const auto prepare = [&](Space space, unsigned address, unsigned value) {
        board.setRegister(space, 1, 5, address, value);
    };
    prepare(Space::C45, 0x1E0001, 0x4501);
    prepare(Space::C45, 0x1E0002, 0x4502);
    prepare(Space::C22, 0x11, 0x2211);
    prepare(Space::C22, 0x12, 0x2212);
    prepare(Space::Ext32, 0x001E0001, 0x32000001);
    prepare(Space::Ext32, 0xFF000002, 0x32000002);
    prepare(Space::Ext32, 4, 0x32000004); // the address after that of a PHY that was not accessed yet
    prepare(Space::Ext32, 0, 0x32000000);
}

// NOLINTNEXTLINE(readability-function-size): a table, an operation an entry
const std::vector<MdioOperation>& mdioOperations() {
    constexpr unsigned int kHandle = identity();
    static const std::vector<MdioOperation> operations = {
        {"read",
         [](SessionWrapper s) { return Words{mdio.read(s, 0x1E0001)}; },
         1,
         readParam(kHandle, {0x251E0001}),
         {0x4501}},
        {"write",
         [](SessionWrapper s) {
             mdio.write(s, 0x1E0002, 0x1234);
             return Words{};
         },
         2,
         writeParam(kHandle, {0x251E0002}, {0x1234}),
         {}},
        {"read_c22",
         [](SessionWrapper s) { return Words{mdio.read_c22(s, 0x11)}; },
         11,
         readParam(kHandle, {0x25000011}),
         {0x2211}},
        {"write_c22",
         [](SessionWrapper s) {
             mdio.write_c22(s, 0x12, 0x5678);
             return Words{};
         },
         12,
         writeParam(kHandle, {0x25000012}, {0x5678}),
         {}},
        {"read_c22_zrExt32",
         [](SessionWrapper s) { return Words{mdio.read_c22_zrExt32(s, 0x1E0001)}; },
         14,
         readParam(kHandle, {0x001E0001}),
         {0x32000001}},
        {"write_c22_zrExt32",
         [](SessionWrapper s) {
             mdio.write_c22_zrExt32(s, 0xFF000002, 0xFEDCBA98);
             return Words{};
         },
         15,
         writeParam(kHandle, {0xFF000002}, {0xFEDCBA98}),
         {}},
        {"read_preinc_c22_zrExt32",
         [](SessionWrapper s) { return Words{mdio.read_preinc_c22_zrExt32(s)}; },
         16,
         {{"handle", kHandle}},
         {0x32000004}},
        {"write_preinc_c22_zrExt32",
         [](SessionWrapper s) {
             mdio.write_preinc_c22_zrExt32(s, 0xFEDCBA98);
             return Words{};
         },
         17,
         {{"handle", kHandle}, {"value", 0xFEDCBA98U}},
         {}},
        {"read_curraddr_c22_zrExt32",
         [](SessionWrapper s) { return Words{mdio.read_curraddr_c22_zrExt32(s)}; },
         18,
         {{"handle", kHandle}},
         {0x32000000}},
        {"write_curraddr_c22_zrExt32",
         [](SessionWrapper s) {
             mdio.write_curraddr_c22_zrExt32(s, 0x89ABCDEF);
             return Words{};
         },
         19,
         {{"handle", kHandle}, {"value", 0x89ABCDEFU}},
         {}},
        {"flush",
         [](SessionWrapper s) {
             mdio.flush(s);
             return Words{};
         },
         7,
         {{"handle", kHandle}, {"deviceIndex", 1}, {"phyAddress", 5}},
         {}},
        {"setSingleWireOn",
         [](SessionWrapper s) {
             mdio.setSingleWire(s, true);
             return Words{};
         },
         8,
         {{"value", 1}, {"handle", kHandle}},
         {}},
        {"setSingleWireOff",
         [](SessionWrapper s) {
             mdio.setSingleWire(s, false);
             return Words{};
         },
         8,
         {{"value", 0}, {"handle", kHandle}},
         {}},
        {"setPreambleCount",
         [](SessionWrapper s) {
             mdio.setPreambleCount(s, 0xFFFFFFF0);
             return Words{};
         },
         10,
         {{"value", 0xFFFFFFF0U}, {"handle", kHandle}},
         {}},
        {"blockRead",
         [](SessionWrapper s) {
             return mdio.blockRead(s, {0x1E0002, 0x1E0001});
         },
         1,
         readParam(kHandle, {0x251E0002, 0x251E0001}),
         {0x4502, 0x4501}},
        {"blockWrite",
         [](SessionWrapper s) {
             mdio.blockWrite(s, {0x1E0003, 0x1E0004}, {0x3333, 0x4444});
             return Words{};
         },
         2,
         writeParam(kHandle, {0x251E0003, 0x251E0004}, {0x3333, 0x4444}),
         {}},
        {"mixedBlock",
         [](SessionWrapper s) {
             return mdio.mixedBlock(s, {0x1E0003}, {0x3333}, {0x1E0001, 0x1E0002}, {0, 1, 1, 1});
         },
         9,
         mixedParam(kHandle, {0x3333}, {0x251E0003}, {0x251E0001, 0x251E0002}, {0, 1, 1, 1}),
         {0x4501, 0x4502}},
        {"mixedBlock_c22",
         [](SessionWrapper s) {
             return mdio.mixedBlock_c22(s, {0x13}, {0x3333}, {0x11, 0x12}, {1, 2});
         },
         13,
         mixedParam(kHandle, {0x3333}, {0x25000013}, {0x25000011, 0x25000012}, {1, 2}),
         {0x2211, 0x2212}},
        {"mixedBlock_c22_32bit",
         [](SessionWrapper s) {
             return mdio.mixedBlock_c22_32bit(s, {0xFF000003}, {0x33333333}, {0x001E0001, 0xFF000002},
                                              {1, 2});
         },
         20,
         mixedParam(kHandle, {0x33333333}, {0xFF000003}, {0x001E0001, 0xFF000002}, {1, 2}),
         {0x32000001, 0x32000002}},
        {"blockReadOfNothing",
         [](SessionWrapper s) { return mdio.blockRead(s, {}); },
         1,
         readParam(kHandle, {}),
         {}},
        {"blockWriteOfNothing",
         [](SessionWrapper s) {
             mdio.blockWrite(s, {}, {});
             return Words{};
         },
         2,
         writeParam(kHandle, {}, {}),
         {}},
        {"mixedBlockOfReadsOnly",
         [](SessionWrapper s) {
             return mdio.mixedBlock(s, {}, {}, {0x1E0001}, {0, 1});
         },
         9,
         mixedParam(kHandle, {}, {}, {0x251E0001}, {0, 1}),
         {0x4501}},
        {"mixedBlockOfNothing",
         [](SessionWrapper s) { return mdio.mixedBlock(s, {}, {}, {}, {}); },
         9,
         mixedParam(kHandle, {}, {}, {}, {}),
         {}},
    };
    return operations;
}

} // namespace OrvaneTest

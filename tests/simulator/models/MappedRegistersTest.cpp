// Registers of a simulated PHY with a map, as a client on the wire finds them.
#include "simulator/models/MappedRegisters.h"

#include "tests/support/simulator/Client.h"

#include <orvane/lab_maps.h>

namespace OrvaneSim {
namespace {

constexpr const char* kMap = R"({
  "format": "orvane-map-1", "name": "wren",
  "blocks": {"CHIP": {"at": "30.0", "registers": {
    "CONTROL": {"at": 0, "reset": "0x2040", "fields": {
        "RESET": "15 self-clearing", "SPEED": "13", "MODEL": "7:6 ro", "KEEP": "5 reserved", "KEY": "4 wo"}},
    "STATUS": {"at": 1, "reset": "0x0004", "access": "ro", "fields": {
        "LINK": "2 latching-low", "FAULT": "1 latching-high", "UP": "0"}},
    "ALARMS": {"at": 2, "reset": 3, "access": "w1c"},
    "ERRORS": {"at": 3, "reset": 5, "access": "clear-on-read"},
    "PAGE": {"at": "0x1F"}},
    "blocks": {
      "ONE": {"at": "0x10", "page": {"select": "CHIP.PAGE", "value": 1}, "registers": {"HEIGHT": {"at": 0, "reset": 11}}},
      "TWO": {"at": "0x10", "page": {"select": "CHIP.PAGE", "value": 2}, "registers": {"HEIGHT": {"at": 0, "reset": 22}}}}
  }},
  "registers": {"WORD": {"at": "ext32:0x100", "reset": "0x12345678", "access": "ro"},
                "OLD": {"at": "c22:0x10", "reset": "0x55AA"}}})";

constexpr u_int kControl = 0x1E0000;
constexpr u_int kStatus = 0x1E0001;
constexpr u_int kAlarms = 0x1E0002;
constexpr u_int kErrors = 0x1E0003;
constexpr u_int kPaged = 0x1E0010;
constexpr u_int kPage = 0x1E001F;

class MappedPhy : public OneBoard {
protected:
    Client mdio{board, SIM_MDIO, "udp"};
    Decoded<sim_MDIO_Read_Result> answer{xdr_sim_MDIO_Read_Result};

    MappedPhy() { board.useMap({0, 0, 0x00112233, mappedRegisters(Orvane::RegisterMap::parse(kMap))}); }

    u_int read(u_int address, decltype(&sim_mdio_read_1) stub = sim_mdio_read_1) {
        sim_MDIO_Read_Param argument{identity, {1, &address}};
        EXPECT_EQ(stub(&argument, &answer.fresh(), mdio.handle()), RPC_SUCCESS);
        return static_cast<u_int>(answer->data.data_val[0]);
    }
    void write(u_int address, u_int value) {
        sim_MDIO_Write_Param argument{identity, 0, {1, &address}, {1, &value}};
        sim_MDIO_Result result{};
        EXPECT_EQ(sim_mdio_write_1(&argument, &result, mdio.handle()), RPC_SUCCESS);
    }
    void set(u_int address, u_int value) { board.setRegister(Space::C45, 0, 0, address, value); }
};

TEST_F(MappedPhy, BeginsWithItsResetValues_InEachSpace) {
    EXPECT_EQ(read(kControl), 0x2040U);
    EXPECT_EQ(read(0x10, sim_mdio_read_c22_1), 0x55AAU);
    EXPECT_EQ(read(0x100, sim_mdio_read_c22_zrext32_1), 0x12345678U);
}

TEST_F(MappedPhy, TellsItsIdentifier_InRegistersThatTheMapDoesNotHave) {
    EXPECT_EQ(read(0x010002), 0x0011U);
    EXPECT_EQ(read(3, sim_mdio_read_c22_1), 0x2233U);
}

TEST_F(MappedPhy, TakesWhatIsWritten_ExceptToBitsThatAreReadOnlyReservedOrClearThemselves) {
    write(kControl, 0x8F30);
    EXPECT_EQ(read(kControl), 0x0F40U) << "bits of no field take it, a write-only one does not tell it";
    EXPECT_EQ(board.registerValue(Space::C45, 0, 0, kControl), 0x0F50U);
}

TEST_F(MappedPhy, LatchesALow_UntilItIsRead) {
    set(kStatus, 0);
    set(kStatus, 4);
    EXPECT_EQ(read(kStatus), 0U);
    EXPECT_EQ(read(kStatus), 4U);
}

TEST_F(MappedPhy, LatchesAHigh_UntilItIsRead_WhileOtherBitsFollow) {
    set(kStatus, 7);
    set(kStatus, 4);
    EXPECT_EQ(read(kStatus), 6U);
    EXPECT_EQ(read(kStatus), 4U);
}

TEST_F(MappedPhy, GoesOnTellingALow_ThatLasts) {
    set(kStatus, 0);
    EXPECT_EQ(read(kStatus), 0U);
    EXPECT_EQ(read(kStatus), 0U);
}

TEST_F(MappedPhy, ClearsTheOnesThatAreWritten_WhereTheMapSaysSo) {
    write(kAlarms, 1);
    EXPECT_EQ(read(kAlarms), 2U);
}

TEST_F(MappedPhy, ClearsACounterThatIsRead_ButNotOneThatIsLookedAt) {
    EXPECT_EQ(board.registerValue(Space::C45, 0, 0, kErrors), 5U);
    EXPECT_EQ(read(kErrors), 5U);
    EXPECT_EQ(read(kErrors), 0U);
}

TEST_F(MappedPhy, ShowsThePageThatIsSelected_AndKeepsEachPagesValue) {
    write(kPage, 2);
    EXPECT_EQ(read(kPaged), 22U);
    write(kPaged, 5);
    write(kPage, 1);
    EXPECT_EQ(read(kPaged), 11U);
    write(kPage, 2);
    EXPECT_EQ(read(kPaged), 5U);
}

TEST_F(MappedPhy, OfAnotherAddressStaysAsItWas) {
    board.setRegister(Space::C45, 0, 1, kErrors, 5);
    EXPECT_EQ(read(1U << 24 | kErrors), 5U);
    EXPECT_EQ(read(1U << 24 | kErrors), 5U);
}

TEST_F(MappedPhy, HoldsASnapshotsValues_WithoutLatchingThem) {
    set(kStatus, 4);
    const auto snapshot = board.registers();
    set(kStatus, 0);
    board.replaceRegisters(snapshot);
    EXPECT_EQ(read(kStatus), 4U);
}

TEST_F(MappedPhy, GivenAnotherMap_ForgetsTheFirst) {
    board.useMap({0, 0, MdioPorts::kIdentifier, {}});
    EXPECT_EQ(read(kControl), 0U);
}

} // namespace
} // namespace OrvaneSim

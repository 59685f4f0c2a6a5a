// orvane config, and what the configuration file does.
#include "tests/support/tools/Program.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

struct OrvaneConfig : testing::Test {
    Folder folder;

    OrvaneConfig() { std::filesystem::create_directories(folder.path("orvane/maps")); }
    std::string file() const { return folder.path("orvane/config.toml"); }
    Environment environment(const std::string& settings) const {
        folder.write("orvane/config.toml", settings);
        return {{"XDG_CONFIG_HOME", folder.path("")}};
    }
};

TEST_F(OrvaneConfig, ShowsWhatHoldsAndWhereItComesFrom) {
    Environment environment = this->environment("addresses = [\"10.83.0.1\", \"10.83.0.2\"]\n"
                                                "maps = [\"chip.json\"]\n"
                                                "session = { mode = \"exclusive\", key = 0x4711 }\n"
                                                "[aliases]\nleft = \"OV0001:0\"\n");
    environment["ORVANE_LOG"] = "/tmp/x.log";
    const std::string path = folder.path("") + "orvane/config.toml";
    const Outcome outcome = orvane({"config", "--csv"}, environment);
    EXPECT_EQ(outcome,
              prints("record,device,board,port,phy,name,text,source,error.kind,error.code,error.text\n"
                     "setting,,,,,addresses,10.83.0.1 10.83.0.2," +
                     path +
                     ",,,\n"
                     "setting,,,,,maps," +
                     folder.path("") + "orvane/chip.json," + path +
                     ",,,\n"
                     "setting,,,,,log,/tmp/x.log,ORVANE_LOG,,,\n"
                     "setting,,,,,session,exclusive 18193," +
                     path +
                     ",,,\n"
                     "setting,,,,,alias left,OV0001:0," +
                     path + ",,,\n"));
}

TEST_F(OrvaneConfig, OfNothingShowsThatNothingIsSaid) {
    EXPECT_EQ(orvane({"config"}, {{"XDG_CONFIG_HOME", folder.path("none")}}),
              prints("SETTING    VALUE   FROM\n"
                     "addresses  -       -\n"
                     "maps       -       -\n"
                     "log        -       -\n"
                     "session    simple  -\n"));
}

TEST_F(OrvaneConfig, GivesAddressesAndAliases) {
    const OneBoardLab lab;
    const Environment environment =
        this->environment("addresses = [\"10.83.0.1\"]\n[aliases]\nleft = \"OV0001:0\"\n");
    EXPECT_EQ(orvane({"i2c", "get", "left", "0", "0x50", "0", "2"}, environment), prints("0x4F 0x56\n"));
    EXPECT_EQ(lab.board.discoveryCount(), 0U);
}

TEST_F(OrvaneConfig, GivesTheKeyOfSessions) {
    const OneBoardLab lab;
    Environment environment = this->environment("session = { mode = \"exclusive\", key = 0x4711 }\n");
    environment["ORVANE_ADDRESS"] = lab.board.address();
    EXPECT_THAT(orvane({"info", "OV0001:0"}, environment).output,
                testing::HasSubstr("\nkey         18193\n"));
}

TEST_F(OrvaneConfig, ThatIsWrongIsRefusedWithItsLine) {
    const std::string path = folder.path("") + "orvane/config.toml";
    EXPECT_EQ(orvane({"list"}, environment("maps = []\naddress = \"10.83.0.1\"\n")),
              fails(2, "orvane: " + path +
                           ": line 2: there is no setting 'address'; there are addresses, aliases, "
                           "log, maps and session\n"));
    EXPECT_EQ(orvane({"list"}, environment("addresses = \"10.83.0.1\"\n")),
              fails(2, "orvane: " + path + ": line 1: addresses is a list of texts\n"));
    EXPECT_EQ(orvane({"list"}, environment("maps = [\n")).status, 2);
}

} // namespace
} // namespace OrvaneTest

// What a rack's transaction log says of each access.
#include "ov_sys/rack/log/TransactionLog.h"

#include "ov_sys/rack/Flight.h"
#include "tests/support/rack/LogFolder.h"
#include "tests/support/rack/RackOnBoard.h"

#include <ctime>
#include <functional>
#include <gmock/gmock.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr const char* kColumns = "adapter,phy,op,mmd,address,value,time,port,outcome,arguments,result\n";

// What is told of logs that failed.
class LogFailures {
public:
    explicit LogFailures(Rack& rack) : rack_(rack) {
        rack.onEvent([this](const Event& event) {
            const std::lock_guard<std::mutex> lock(mutex_);
            if (event.kind == Event::Kind::LogFailed && event.level == Event::Level::Warning)
                texts_.push_back(event.text);
            closed_ = closed_ || event.kind == Event::Kind::Closed;
            came_.notify_all();
        });
    }
    ~LogFailures() { rack_.onEvent({}); }
    LogFailures(const LogFailures&) = delete;
    LogFailures& operator=(const LogFailures&) = delete;

    // All that were told before a session was closed.
    std::vector<std::string> untilClosed() {
        std::unique_lock<std::mutex> lock(mutex_);
        came_.wait_for(lock, 10s, [this] { return closed_; });
        return texts_;
    }

private:
    Rack& rack_;
    std::mutex mutex_; // guards everything below
    std::condition_variable came_;
    bool closed_ = false;
    std::vector<std::string> texts_;
};

struct RackTransactionLog : testing::Test, protected RackOnBoard, protected LogFolder {
    void log() {
        phy.open();
        rack.logTo(path);
    }
};

TEST_F(RackTransactionLog, BeginsWithTheNamesOfItsColumns) {
    log();
    EXPECT_EQ(text(), kColumns);
}

TEST_F(RackTransactionLog, IsContinuedWithoutTheNamesOfItsColumns) {
    log();
    rack.note("one");
    rack.logTo(path);
    rack.note("two");
    EXPECT_EQ(timeless(text()), std::string(kColumns) + ",,note,,,,TIME,,,one,\n,,note,,,,TIME,,,two,\n");
}

TEST_F(RackTransactionLog, HasALineForEachRegisterAccess) {
    log();
    phy.write({30, 0xC010}, 0xCAFE);
    phy.read({30, 0xC010});
    phy.write(clause22(4), 7);
    phy.read(clause22(4));
    phy.write(ext32(0x80004000), 0xDEADBEEF);
    phy.read(ext32(0x80004000));
    phy.modify({30, 0xC010}, 0xFF, 1);
    EXPECT_EQ(lines(), "0,3,MW,1E,C010,CAFE,TIME,BOARD7:1,done,,\n"
                       "0,3,MR,1E,C010,CAFE,TIME,BOARD7:1,done,,\n"
                       "0,3,2W,,04,0007,TIME,BOARD7:1,done,,\n"
                       "0,3,2R,,04,0007,TIME,BOARD7:1,done,,\n"
                       "0,3,MW,,80004000,DEADBEEF,TIME,BOARD7:1,done,,\n"
                       "0,3,MR,,80004000,DEADBEEF,TIME,BOARD7:1,done,,\n"
                       "0,3,MR,1E,C010,CAFE,TIME,BOARD7:1,done,,\n"
                       "0,3,MW,1E,C010,CA01,TIME,BOARD7:1,done,,\n");
}

TEST_F(RackTransactionLog, NumbersPortsInTheOrderOfTheirFirstAccess) {
    log();
    rack.open("board7:4").phy(0).write({1, 2}, 3);
    phy.write({1, 2}, 3);
    rack.open("board7:10").phy(3).write({1, 2}, 3);
    rack.open("board7:0").phy(3).write({1, 2}, 3);
    EXPECT_THAT(lines(), HasSubstr("0,0,MW,01,0002,0003,TIME,BOARD7:4,done,,\n"));
    EXPECT_THAT(lines(), HasSubstr("1,3,MW,01,0002,0003,TIME,BOARD7:1,done,,\n"));
    EXPECT_THAT(lines(), HasSubstr("2,3,MW,01,0002,0003,TIME,BOARD7:10,done,,\n"));
    EXPECT_THAT(lines(), HasSubstr("3,3,MW,01,0002,0003,TIME,BOARD7:0,done,,\n"));
}

TEST_F(RackTransactionLog, TellsTheTimeInUtc) {
    log();
    const auto before = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    rack.note("now");
    std::tm parts{};
    strptime(text().substr(text().find('\n') + 11).c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
    EXPECT_GE(timegm(&parts), before);
    EXPECT_LE(timegm(&parts), before + 60);
}

TEST_F(RackTransactionLog, TellsWhatFailedAndGivesNoValueForIt) {
    log();
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 1, -5);
    failureOf([&] { phy.read({1, 2}); });
    inject(Fault::Kind::LoseReply, "mdio", "mdio_write", -1);
    failureOf([&] { phy.write({1, 2}, 3, within(200ms).once()); });
    EXPECT_EQ(lines(), "0,3,MR,01,0002,,TIME,BOARD7:1,board error -5,,\n"
                       "0,3,MW,01,0002,0003,TIME,BOARD7:1,timed out,,\n");
}

TEST_F(RackTransactionLog, LeavesOutWhatIsRefusedUnsent) {
    log();
    failureOf([&] { phy.read({40, 2}); });
    failureOf([&] { phy.i2c().read(10, 0x50, 0, 1); });
    failureOf([&] { rack.open("board7:10").phy(3).mdio().readNext(); });
    EXPECT_EQ(lines(), "");
}

TEST_F(RackTransactionLog, HasALineForEachOperationOfABatch) {
    log();
    Batch batch;
    batch.write({1, 1}, 1);
    batch.read({1, 1});
    batch.write(clause22(1), 2);
    batch.read({1, 3});
    inject(Fault::Kind::ResultCode, "mdio", "mdio_mixedblock_c22", 1, -22);
    phy.run(batch);
    EXPECT_EQ(lines(), "0,3,MW,01,0001,0001,TIME,BOARD7:1,done,,\n"
                       "0,3,MR,01,0001,0001,TIME,BOARD7:1,done,,\n"
                       "0,3,2W,,01,0002,TIME,BOARD7:1,board error -22,,\n"
                       "0,3,MR,01,0003,,TIME,BOARD7:1,not sent,,\n");
}

TEST_F(RackTransactionLog, NamesWhatABatchFailedByWhenNothingWasSent) {
    log();
    Batch batch;
    batch.read({1, 1}, 2);
    board.stop();
    phy.run(batch, within(100ms));
    EXPECT_THAT(lines(), MatchesRegex("0,3,MR,01,0001,,TIME,BOARD7:1,(timed out|unreachable),,\n"
                                      "0,3,MR,01,0002,,TIME,BOARD7:1,(timed out|not sent),,\n"));
}

TEST_F(RackTransactionLog, HasTheAccessesOfARoutedOne) {
    log();
    RegisterPaths paths;
    paths.overClause22 = true;
    phy.routed(paths).write({1, 2}, 3);
    EXPECT_EQ(lines(), "0,3,2W,,0D,0001,TIME,BOARD7:1,done,,\n"
                       "0,3,2W,,0E,0002,TIME,BOARD7:1,done,,\n"
                       "0,3,2W,,0D,4001,TIME,BOARD7:1,done,,\n"
                       "0,3,2W,,0E,0003,TIME,BOARD7:1,done,,\n");
}

TEST_F(RackTransactionLog, HasRegistersOnSmbusPortsOnce) {
    log();
    const Phy smbus = rack.open("board7:10").phy(3);
    smbus.write({1, 2}, 3);
    Batch batch;
    batch.read({1, 2});
    smbus.run(batch);
    EXPECT_EQ(lines(), "0,3,event.opened,,,,TIME,BOARD7:10,,,\n"
                       "0,3,MW,01,0002,0003,TIME,BOARD7:10,done,,\n"
                       "0,3,MR,01,0002,0003,TIME,BOARD7:10,done,,\n");
}

TEST_F(RackTransactionLog, HasTheAccessesOfAFlight) {
    log();
    Flight flight;
    flight.write(phy, {1, 2}, 3);
    flight.read(phy, {1, 2});
    Batch batch;
    batch.read({1, 2}, 2);
    flight.run(phy, batch);
    flight.wait();
    EXPECT_EQ(lines(), "0,3,MW,01,0002,0003,TIME,BOARD7:1,done,,\n"
                       "0,3,MR,01,0002,0003,TIME,BOARD7:1,done,,\n"
                       "0,3,MR,01,0002,0003,TIME,BOARD7:1,done,,\n"
                       "0,3,MR,01,0003,1E83,TIME,BOARD7:1,done,,\n");
}

// What a service's access says: operation, outcome, arguments and result.
struct Accessed {
    const char* name;
    std::function<void(const Phy&)> access;
    const char* line;
};

class LoggedAccess : public testing::TestWithParam<Accessed>, protected RackOnBoard, protected LogFolder {};

TEST_P(LoggedAccess, OfAServiceHasItsArgumentsAndItsResult) {
    phy.open();
    rack.logTo(path);
    GetParam().access(phy);
    const std::string said = lines();
    const std::string last = said.substr(said.rfind('\n', said.size() - 2) + 1);
    EXPECT_EQ(last, std::string("0,3,") + GetParam().line + "\n");
}

const Accessed kAccesses[] = {
    {"I2cWrite",
     [](const Phy& phy) {
         phy.i2c().write(0, 0x50, {0x40, 1, 2});
     },
     "i2c.write,,,,TIME,BOARD7:1,done,bus=0;device=0x50;bytes=400102,"},
    {"I2cRead", [](const Phy& phy) { phy.i2c().read(2, 0x50, 0x40, 2); },
     "i2c.read,,,,TIME,BOARD7:1,done,bus=2;device=0x50;command=0x40;length=2,bytes=FFFF"},
    {"I2cReadRegister", [](const Phy& phy) { phy.i2c().readRegister(2, 0x50, 0x40, 1, 2); },
     "i2c.readRegister,,,,TIME,BOARD7:1,done,bus=2;device=0x50;reg=0x40;format=1;length=2,bytes=FFFF"},
    {"I2cReadBlock",
     [](const Phy& phy) {
         phy.i2c().readBlock({{0, 0x50, 0x40, 1, 1}, {1, 0x50, 0x41, 1, 2}});
     },
     "i2c.readBlock,,,,TIME,BOARD7:1,done,bus=0;device=0x50;reg=0x40;format=1;length=1;"
     "bus=1;device=0x50;reg=0x41;format=1;length=2,bytes=FFFFFF"},
    {"I2cWriteBlock",
     [](const Phy& phy) {
         phy.i2c().writeBlock({{0, 0x50, 0x40, 1, 0, {1, 2}}});
     },
     "i2c.writeBlock,,,,TIME,BOARD7:1,done,bus=0;device=0x50;reg=0x40;format=1;bytes=0102,"},
    {"I2cWriteBlockMasked",
     [](const Phy& phy) {
         phy.i2c().writeBlockMasked({{0, 0x50, 0x40, 1, 0, {1}}}, 0x0F);
     },
     "i2c.writeBlockMasked,,,,TIME,BOARD7:1,done,bus=0;device=0x50;reg=0x40;format=1;bytes=01;mask=0x0F,"},
    {"I2cThatTheDeviceRefuses", [](const Phy& phy) { EXPECT_THROW(phy.i2c().read(0, 0x51, 0, 1), Failure); },
     "i2c.read,,,,TIME,BOARD7:1,board error -121,bus=0;device=0x51;command=0x00;length=1,"},
    {"GpioRead",
     [](const Phy& phy) {
         phy.gpio().read({1, 2});
     },
     "gpio.read,,,,TIME,BOARD7:1,done,lines=0102,states=0000"},
    {"GpioWrite",
     [](const Phy& phy) {
         phy.gpio().write({1, 2}, {0, 1});
     },
     "gpio.write,,,,TIME,BOARD7:1,done,lines=0102;states=0001,"},
    {"GpioEnableOutput", [](const Phy& phy) { phy.gpio().enableOutput({1}, {1}); },
     "gpio.enableOutput,,,,TIME,BOARD7:1,done,lines=01;states=01,"},
    {"GpioOutputEnables", [](const Phy& phy) { phy.gpio().outputEnables({1}); },
     "gpio.outputEnables,,,,TIME,BOARD7:1,done,lines=01,states=00"},
    {"GpioSetDefault", [](const Phy& phy) { phy.gpio().setDefault({1}); },
     "gpio.setDefault,,,,TIME,BOARD7:1,done,lines=01,"},
    {"GpioReset", [](const Phy& phy) { phy.gpio().reset(); }, "gpio.reset,,,,TIME,BOARD7:1,done,,"},
    {"GpioBitBang", [](const Phy& phy) { phy.gpio().bitBang({1}, {0}, {1}); },
     "gpio.bitBang,,,,TIME,BOARD7:1,done,first=01;second=00;third=01,states=00"},
    {"JtagShift",
     [](const Phy& phy) {
         phy.jtag().shift({"00000", "11111", "1"});
     },
     "jtag.shift,,,,TIME,BOARD7:1,done,data=00000;tms=11111;lastTms=1,bits=11111"},
    {"AdcSetChannelMask", [](const Phy& phy) { phy.adc().setChannelMask(3); },
     "adc.setChannelMask,,,,TIME,BOARD7:1,done,mask=0x03,"},
    {"AdcSetDumpFile", [](const Phy& phy) { phy.adc().setDumpFile("a,b\x1B"); },
     "adc.setDumpFile,,,,TIME,BOARD7:1,done,name=a\\x2Cb\\x1B,"},
    {"AdcSetEventName", [](const Phy& phy) { phy.adc().setEventName("e"); },
     "adc.setEventName,,,,TIME,BOARD7:1,done,name=e,"},
    {"AdcInitialize", [](const Phy& phy) { phy.adc().initialize(); },
     "adc.initialize,,,,TIME,BOARD7:1,done,,"},
    {"AdcStop", [](const Phy& phy) { phy.adc().stop(); }, "adc.stop,,,,TIME,BOARD7:1,done,,"},
    {"ThermalConnect", [](const Phy& phy) { phy.thermal().connect(); },
     "thermal.connect,,,,TIME,BOARD7:1,done,,"},
    {"ThermalSetTemperature",
     [](const Phy& phy) {
         phy.thermal().connect();
         phy.thermal().setTemperature(0, 85.5F, 1);
     },
     "thermal.setTemperature,,,,TIME,BOARD7:1,done,channel=0;celsius=85.5;flag=1,"},
    {"ThermalTemperature",
     [](const Phy& phy) {
         phy.thermal().connect();
         phy.thermal().temperature(0);
     },
     "thermal.temperature,,,,TIME,BOARD7:1,done,channel=0,celsius=25"},
    {"ThermalStartControl",
     [](const Phy& phy) {
         phy.thermal().connect();
         phy.thermal().startControl(0);
     },
     "thermal.startControl,,,,TIME,BOARD7:1,done,channel=0,"},
    {"ShellRun", [](const Phy& phy) { phy.shell().run("hostname", 5s); },
     "shell.run,,,,TIME,BOARD7:1,done,command=hostname;limit=5,status=0;output=board7\\x0A;errors="},
    {"ShellErrorRecord", [](const Phy& phy) { phy.shell().errorRecord(-5); },
     "shell.errorRecord,,,,TIME,BOARD7:1,done,code=-5,kind=0;detail=0"},
    {"MdioFlush", [](const Phy& phy) { phy.mdio().flush(); }, "mdio.flush,,,,TIME,BOARD7:1,done,,"},
    {"MdioSetSingleWire", [](const Phy& phy) { phy.mdio().setSingleWire(true); },
     "mdio.setSingleWire,,,,TIME,BOARD7:1,done,on=1,"},
    {"MdioSetPreambleCount", [](const Phy& phy) { phy.mdio().setPreambleCount(32); },
     "mdio.setPreambleCount,,,,TIME,BOARD7:1,done,count=32,"},
    {"MdioWriteCurrent", [](const Phy& phy) { phy.mdio().writeCurrent(0x1234); },
     "mdio.writeCurrent,,,,TIME,BOARD7:1,done,value=0x1234,"},
    {"SessionClose", [](const Phy& phy) { phy.close(); }, "session.close,,,,TIME,BOARD7:1,done,,"},
};

INSTANTIATE_TEST_SUITE_P(Each, LoggedAccess, testing::ValuesIn(kAccesses),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(RackTransactionLog, HasPingsWithTheirTimes) {
    log();
    phy.shell().ping();
    EXPECT_THAT(lines(), MatchesRegex("0,3,shell\\.ping,,,,TIME,BOARD7:1,done,,microseconds=[0-9]+\n"));
}

TEST_F(RackTransactionLog, TellsOfAnAnswerThatIsNone) {
    log();
    inject(Fault::Kind::ReplyCount, "gpio", "gpio_read", 1, 1);
    failureOf([&] { phy.gpio().read({1, 2}); });
    EXPECT_EQ(lines(), "0,3,gpio.read,,,,TIME,BOARD7:1,bad reply,lines=0102,\n");
}

TEST_F(RackTransactionLog, HasTheSessionsOpeningsAndLosses) {
    log();
    board.forgetSessions();
    phy.read({1, 2});
    phy.close();
    EXPECT_EQ(lines(), "0,3,event.lost,,,,TIME,BOARD7:1,,text=the board forgot the session,\n"
                       "0,3,event.reopened,,,,TIME,BOARD7:1,,,\n"
                       "0,3,MR,01,0002,0A5C,TIME,BOARD7:1,done,,\n"
                       "0,3,event.closed,,,,TIME,BOARD7:1,,,\n"
                       "0,3,session.close,,,,TIME,BOARD7:1,done,,\n");
}

TEST_F(RackTransactionLog, KeepsNotesInTheirPlace) {
    log();
    phy.write({1, 2}, 3);
    rack.note("hot, \x1B[31mwarm\nor cold");
    phy.write({1, 2}, 4);
    EXPECT_EQ(lines(), "0,3,MW,01,0002,0003,TIME,BOARD7:1,done,,\n"
                       ",,note,,,,TIME,,,hot\\x2C \\x1B[31mwarm\\x0Aor cold,\n"
                       "0,3,MW,01,0002,0004,TIME,BOARD7:1,done,,\n");
}

TEST_F(RackTransactionLog, EndsWhenItIsTold) {
    log();
    rack.endLog();
    phy.write({1, 2}, 3);
    rack.note("nothing");
    EXPECT_EQ(text(), kColumns);
}

TEST_F(RackTransactionLog, ThatCannotBeOpenedIsAFailureAndLeavesTheFormerOne) {
    log();
    const Failure failure = failureOf([&] { rack.logTo(folder + "/nowhere/log"); });
    EXPECT_EQ(failure.kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(failure.location(), '"' + folder + "/nowhere/log\"");
    EXPECT_THAT(failure.what(), HasSubstr("No such file or directory"));
    rack.note("still here");
    EXPECT_EQ(lines(), ",,note,,,,TIME,,,still here,\n");
}

TEST_F(RackTransactionLog, ThatFailsIsToldOnceAndCostsNoAccess) {
    LogFailures failures(rack);
    log();
    rack.logTo("/dev/full");
    phy.write({1, 2}, 3);
    EXPECT_EQ(phy.read({1, 2}), 3U);
    rack.logTo("/dev/full"); // another log
    phy.close();
    EXPECT_EQ(failures.untilClosed(), std::vector<std::string>(2, "No space left on device"));
}

TEST_F(RackTransactionLog, CountsTheLinesThatAreMissingWhereItGoesOn) {
    bool full = false;
    std::string text;
    phy.open();
    rack.logTo([&](std::string_view lines) {
        if (full)
            throw std::runtime_error("no room");
        text += lines;
    });
    full = true;
    phy.read({1, 2}, 3);
    rack.note("lost");
    full = false;
    phy.write({1, 2}, 3);
    rack.endLog();
    EXPECT_EQ(timeless(text), std::string(kColumns) + ",,note,,,,TIME,,,4 lines are missing here: no room,\n"
                                                      "0,3,MW,01,0002,0003,TIME,BOARD7:1,done,,\n");
}

TEST_F(RackTransactionLog, GetsWholeLinesFromSeveralThreads) {
    log();
    constexpr int kTimes = 200;
    std::vector<std::thread> threads;
    for (unsigned id = 0; id < 4; ++id)
        threads.emplace_back([this, id] {
            const Phy own = rack.open("board7:2").phy(id);
            for (int i = 0; i < kTimes; ++i)
                i % 2 == 0 ? rack.note("note") : own.write({1, id}, 3);
        });
    for (std::thread& one : threads)
        one.join();
    rack.endLog();
    const std::string all = text();
    const std::regex whole("[^,\n]*(,[^,\n]*){10}\n");
    EXPECT_EQ(std::regex_replace(all, whole, ""), "");
    const std::regex write(",MW,");
    EXPECT_EQ(std::distance(std::sregex_iterator(all.begin(), all.end(), write), {}), 4 * kTimes / 2);
}

} // namespace
} // namespace OrvaneTest

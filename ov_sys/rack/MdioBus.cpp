// The MDIO bus: its switches, the 32-bit extension's address register, interrupts.
#include "ov_sys/rack/core/ServiceCall.h"
#include "ov_sys/rack/Services.h"

namespace Orvane {

using RackCore::LogEntry;
using RackCore::OpenSession;
using RackCore::require;
using RackCore::requireCount;
using RackCore::runSimple;
using RackCore::ServiceCall;
using RackLink::Effect;
using RackLink::Program;

namespace {

using MdioProcedure = Programs::MDIOProcedure;

// SMBus ports have no MDIO bus.
void requireMdio(OpenSession& session, const char* operation) {
    require(!session.target().overSmbus(), session, operation, "An SMBus port has no MDIO bus.");
}

std::uint32_t readWord(LogEntry entry, MdioProcedure procedure, Effect effect, const Within& within) {
    requireMdio(entry.session(), "read");
    ServiceCall<MDIO_Read_Param_No_Addr, MDIO_Read_Result_Single> call(entry, Program::Mdio, procedure,
                                                                       effect);
    call.run("read", within, "ext32 at its address");
    entry.result.addHex("value", call.result.value);
    entry.done();
    return call.result.value;
}

void writeWord(LogEntry entry, MdioProcedure procedure, Effect effect, std::uint32_t value,
               const Within& within) {
    requireMdio(entry.session(), "write");
    entry.arguments.addHex("value", value);
    ServiceCall<MDIO_Write_Param_No_Addr, MDIO_Result> call(entry, Program::Mdio, procedure, effect);
    call.argument.value = value;
    call.run("write", within, "ext32 at its address");
    entry.done();
}

// Of interrupts.
int simple(LogEntry entry, MdioProcedure procedure, Effect effect, std::uint32_t value, const char* operation,
           const Within& within) {
    entry.arguments.add("value", value);
    const auto got =
        runSimple<MDIO_Result>(entry, Program::Mdio, procedure, effect, value, operation, within);
    return entry.done("value", static_cast<int>(got.value));
}

} // namespace

void MdioBus::flush(const Within& within) const {
    requireMdio(*session_, "flush");
    LogEntry entry(*session_, "mdio.flush");
    ServiceCall<MDIO_FlushPort_Param, MDIO_Result> call(entry, Program::Mdio, MdioProcedure::FlushPort,
                                                        Effect::Writes);
    call.argument.byte1 = static_cast<u_char>(session_->state().port);
    call.argument.byte2 = static_cast<u_char>(session_->state().phy);
    call.run("flush", within);
    entry.done();
}

void MdioBus::setSingleWire(bool on, const Within& within) const {
    requireMdio(*session_, "single wire");
    LogEntry entry(*session_, "mdio.setSingleWire");
    entry.arguments.add("on", on);
    runSimple<MDIO_Result>(entry, Program::Mdio, MdioProcedure::SingleWire, Effect::Writes, on ? 1 : 0,
                           "single wire", within);
    entry.done();
}

void MdioBus::setPreambleCount(std::uint32_t count, const Within& within) const {
    requireMdio(*session_, "preamble count");
    LogEntry entry(*session_, "mdio.setPreambleCount");
    entry.arguments.add("count", count);
    const auto echo = runSimple<Simple_Result>(entry, Program::Mdio, MdioProcedure::SetPreambleCount,
                                               Effect::Writes, count, "preamble count", within);
    requireCount(static_cast<std::uint32_t>(echo.value), count, *session_, "preamble count");
    entry.done();
}

std::uint32_t MdioBus::readNext(const Within& within) const {
    return readWord({*session_, "mdio.readNext"}, MdioProcedure::ReadPreincrementC22ZrExt32, Effect::Alone,
                    within);
}

void MdioBus::writeNext(std::uint32_t value, const Within& within) const {
    writeWord({*session_, "mdio.writeNext"}, MdioProcedure::WritePreincrementC22ZrExt32, Effect::Alone, value,
              within);
}

std::uint32_t MdioBus::readCurrent(const Within& within) const {
    return readWord({*session_, "mdio.readCurrent"}, MdioProcedure::ReadCurrentAddressC22ZrExt32,
                    Effect::Reads, within);
}

void MdioBus::writeCurrent(std::uint32_t value, const Within& within) const {
    writeWord({*session_, "mdio.writeCurrent"}, MdioProcedure::WriteCurrentAddressC22ZrExt32, Effect::Writes,
              value, within);
}

int MdioBus::requestInterrupt(std::uint8_t first, std::uint8_t second, int third, int fourth,
                              const Within& within) const {
    requireMdio(*session_, "interrupt request");
    LogEntry entry(*session_, "mdio.requestInterrupt");
    entry.arguments.add("first", first).add("second", second).add("third", third).add("fourth", fourth);
    ServiceCall<MDIO_InterruptRequest_Param, MDIO_Result> call(
        entry, Program::Mdio, MdioProcedure::InterruptRequest, Effect::Writes);
    call.argument.byte1 = first;
    call.argument.byte2 = second;
    call.argument.int1 = third;
    call.argument.int2 = fourth;
    call.run("interrupt request", within);
    return entry.done("value", static_cast<int>(call.result.value));
}

int MdioBus::waitForInterrupt(std::uint32_t value, const Within& within) const {
    requireMdio(*session_, "interrupt wait");
    return simple({*session_, "mdio.waitForInterrupt"}, MdioProcedure::InterruptWait, Effect::Alone, value,
                  "interrupt wait", within);
}

int MdioBus::interruptProcessed(std::uint32_t value, const Within& within) const {
    requireMdio(*session_, "interrupt processed");
    LogEntry entry(*session_, "mdio.interruptProcessed");
    entry.arguments.add("value", value);
    ServiceCall<MDIO_InterruptProcessed_Param, MDIO_Result> call(
        entry, Program::Mdio, MdioProcedure::InterruptProcessed, Effect::Writes);
    call.argument.word1 = value;
    call.run("interrupt processed", within);
    return entry.done("value", static_cast<int>(call.result.value));
}

int MdioBus::releaseInterrupt(std::uint32_t value, const Within& within) const {
    requireMdio(*session_, "interrupt release");
    return simple({*session_, "mdio.releaseInterrupt"}, MdioProcedure::InterruptRelease, Effect::Writes,
                  value, "interrupt release", within);
}

} // namespace Orvane

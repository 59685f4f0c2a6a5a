// A log record beside the bare fprintf() of the same line.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <orvane/orvane.h>

namespace {

void bareFprintf(benchmark::State& state) {
    std::FILE* const file = std::fopen("/dev/null", "w");
    for (auto _ : state)
        std::fprintf(file, "%u,%u,MR,%02X,%04X,%04X\n", 0U, 3U, 1U, 0x20U, 0x1234U);
    std::fclose(file);
}
BENCHMARK(bareFprintf);

void logRecord(benchmark::State& state) {
    HW_EnableLogging(std::fopen("/dev/null", "w"));
    for (auto _ : state)
        HW_Logging_MDIORead(0, 3, 1, 0x20, 0x1234);
    HW_DisableLogging(1);
}
BENCHMARK(logRecord);

void logRecordWhileOff(benchmark::State& state) {
    HW_DisableLogging(0);
    for (auto _ : state)
        HW_Logging_MDIORead(0, 3, 1, 0x20, 0x1234);
}
BENCHMARK(logRecordWhileOff);

} // namespace

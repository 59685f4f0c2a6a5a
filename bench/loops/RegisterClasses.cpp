// Whether a register belongs to a class: the same time for the first range of its list, the last and none.
#include <benchmark/benchmark.h>
#include <orvane/orvane.h>

namespace {

void registerClass(benchmark::State& state) {
    const auto address = static_cast<unsigned>(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(isNECRegister(31, address));
        benchmark::DoNotOptimize(isDECRegister(31, address));
    }
}
BENCHMARK(registerClass)->ArgName("address")->Arg(0x8037)->Arg(0xB9D8)->Arg(0x8FFF);

} // namespace

// Register maps: loading ten thousand registers, finding one of a hundred thousand.
#include <benchmark/benchmark.h>
#include <memory>
#include <orvane/maps.hpp>
#include <string>
#include <vector>

namespace {

// As people write them: a text, a reset and four fields each.
std::string mapOfTenThousand() {
    std::string text =
        R"({"format": "orvane-map-1", "name": "bench", "blocks": {"CHIP": {"at": "30.0", "registers": {)";
    for (unsigned i = 0; i < 10000; ++i)
        text += (i > 0 ? ",\n\"R" : "\n\"R") + std::to_string(i) + R"(": {"at": )" + std::to_string(i) +
                R"(, "reset": "0x0040", "text": "Control of something", "fields": {
 "RESET": "15 self-clearing: Resets it", "SPEED": "6,13", "LEVEL": "5:2 ro: How much", "ON": "0: Switches it on"}})";
    return text + "}}}}";
}

Orvane::RegisterMap mapOfAHundredThousand() {
    return Orvane::RegisterMap::parse(R"({"format": "orvane-map-1", "name": "bench", "blocks": {"CHIP": {
        "at": "ext32:0x80000000", "count": 1000, "stride": "0x1000", "registers": {"R": {"at": 0, "count": 100}}}}})");
}

// The same number, none of them in an array.
Orvane::RegisterMap mapOfAHundredThousandNames() {
    std::string text =
        R"({"format": "orvane-map-1", "name": "bench", "blocks": {"CHIP": {"at": "ext32:0x80000000", "registers": {)";
    for (unsigned i = 0; i < 100000; ++i)
        text += (i > 0 ? ",\"R" : "\"R") + std::to_string(i) + R"(":{"at":)" + std::to_string(4 * i) + "}";
    return Orvane::RegisterMap::parse(text + "}}}}");
}

// What to look for, one behind the other in memory but far apart in the map.
template <class Of>
auto questions(const Orvane::RegisterMap& map, Of of) {
    std::vector<decltype(of(map.registers().front()))> list;
    for (std::size_t i = 0, at = 0; i < map.size(); ++i, at = (at + 7919) % map.size())
        list.push_back(of(map.registers()[at]));
    return list;
}

template <class Question>
void findAll(benchmark::State& state, const Orvane::RegisterMap& map, const std::vector<Question>& list) {
    std::size_t at = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(list[at]));
        at = at + 1 == list.size() ? 0 : at + 1;
    }
}

void mapLoad(benchmark::State& state) {
    const std::string text = mapOfTenThousand();
    for (auto _ : state)
        benchmark::DoNotOptimize(Orvane::RegisterMap::parse(text).size());
}
BENCHMARK(mapLoad)->Unit(benchmark::kMillisecond);

void mapIeee8023(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(
            Orvane::RegisterMap::parse(R"({"format": "orvane-map-1", "name": "x", "include": ["ieee8023"]})")
                .size());
}
BENCHMARK(mapIeee8023)->Unit(benchmark::kMillisecond);

void mapByName(benchmark::State& state) {
    const Orvane::RegisterMap map = mapOfAHundredThousand();
    findAll(state, map,
            questions(map, [](const Orvane::MapRegister& reg) { return std::string(reg.name()); }));
}
BENCHMARK(mapByName);

void mapByOwnName(benchmark::State& state) {
    const Orvane::RegisterMap map = mapOfAHundredThousandNames();
    findAll(state, map,
            questions(map, [](const Orvane::MapRegister& reg) { return std::string(reg.name()); }));
}
BENCHMARK(mapByOwnName);

void mapByAddress(benchmark::State& state) {
    const Orvane::RegisterMap map = mapOfAHundredThousand();
    findAll(state, map,
            questions(map, [](const Orvane::MapRegister& reg) { return Orvane::MapAddress(reg.address()); }));
}
BENCHMARK(mapByAddress);

void mapDecode(benchmark::State& state) {
    const Orvane::MapRegister& status = *Orvane::RegisterMap::ieee8023().find("C22.STATUS");
    for (auto _ : state)
        benchmark::DoNotOptimize(Orvane::RegisterMap::decode(status, 0x796D).size());
}
BENCHMARK(mapDecode);

} // namespace

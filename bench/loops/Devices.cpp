// Finding a device by its name among three thousand.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <memory>
#include <orvane/orvane.hpp>
#include <string>
#include <vector>

namespace {

constexpr unsigned kDevices = 3000;

std::string nameOf(unsigned device) {
    return "LOOP" + std::to_string(10000 + device) + ":0";
}

std::vector<std::string> names() {
    std::vector<std::string> list;
    for (unsigned device = 0; device < kDevices; ++device)
        list.push_back(nameOf(device));
    return list;
}

// Lists the devices as a search for boards would, each on a board of its own that nobody will ever call.
void listDevices(Orvane::HWInterface& devices) {
    std::vector<std::unique_ptr<Orvane::AddressResponse>> records;
    std::vector<Orvane::AddressResponse*> found;
    for (unsigned device = 0; device < kDevices; ++device) {
        records.push_back(std::make_unique<Orvane::AddressResponse>("host " + nameOf(device), "127.0.0.1"));
        found.push_back(records.back().get());
    }
    devices.updateSimpleDeviceList(found);
}

void linearSearchOverStrings(benchmark::State& state) {
    const std::vector<std::string> list = names();
    unsigned device = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::find(list.begin(), list.end(), list[device]));
        device = (device + 1) % kDevices;
    }
}
BENCHMARK(linearSearchOverStrings);

void deviceIndex(benchmark::State& state) {
    Orvane::HWInterface devices;
    listDevices(devices);
    const std::vector<std::string> list = names();
    unsigned device = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(devices.deviceIndex(list[device]));
        device = (device + 1) % kDevices;
    }
}
BENCHMARK(deviceIndex);

void listingOfDevices(benchmark::State& state) {
    for (auto _ : state) {
        Orvane::HWInterface devices;
        listDevices(devices);
    }
}
BENCHMARK(listingOfDevices)->Unit(benchmark::kMillisecond);

// HW_Open() of a listed device, sessions being opened by the first access only.
void openOfListedDevices(benchmark::State& state) {
    if (HW_Interface_Object.devices.empty())
        listDevices(HW_Interface_Object);
    const std::vector<std::string> list = names();
    unsigned device = 0;
    for (auto _ : state) {
        if (HW_Open(list[device].c_str()) != 1)
            state.SkipWithError("not opened");
        device = (device + 1) % kDevices;
    }
}
BENCHMARK(openOfListedDevices);

} // namespace

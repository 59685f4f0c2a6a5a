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
constexpr unsigned kDevicesOfASearch = 1000; // a search adds 1,024 at most

std::string nameOf(unsigned device) {
    return "LOOP" + std::to_string(10000 + device) + ":0";
}

std::vector<std::string> names() {
    std::vector<std::string> list;
    for (unsigned device = 0; device < kDevices; ++device)
        list.push_back(nameOf(device));
    return list;
}

void listDevices(Orvane::HWInterface& devices, unsigned first) {
    std::vector<std::unique_ptr<Orvane::AddressResponse>> records;
    std::vector<Orvane::AddressResponse*> found;
    for (unsigned device = first; device < first + kDevicesOfASearch; ++device) {
        records.push_back(std::make_unique<Orvane::AddressResponse>("host " + nameOf(device), "127.0.0.1"));
        found.push_back(records.back().get());
    }
    devices.updateSimpleDeviceList(found);
}

// Lists the devices as searches for boards would, each on a board of its own that nobody will ever call.
void listDevices(Orvane::HWInterface& devices) {
    for (unsigned first = 0; first < kDevices; first += kDevicesOfASearch)
        listDevices(devices, first);
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

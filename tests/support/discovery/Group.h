// Where boards listen for discovery.
#pragma once

namespace OrvaneTest {

constexpr char kGroup[] = "239.255.255.38";
constexpr unsigned kGroupPort = 12345;

// As long as a search may take that ends with the last board it waits for.
constexpr unsigned kPatientMs = 60'000;

} // namespace OrvaneTest

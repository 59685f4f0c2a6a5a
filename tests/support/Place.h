// Where a test reads and writes when any place would do.
#pragma once

namespace OrvaneTest {

// A port of the board, and a PHY on it.
constexpr unsigned kPort = 1;
constexpr int kPhy = 5;

// A register of that PHY in Clause 45, MMD 1, and a value for it.
constexpr unsigned kRegister = 0x10002;
constexpr unsigned kValue = 0xCAFE;

} // namespace OrvaneTest

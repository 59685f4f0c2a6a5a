// Maps written in a line or two, and what the library says of them.
#pragma once

#include <orvane/maps.hpp>
#include <string>

namespace OrvaneTest {

// A map with these members beside its format and name: R"("registers": {...})".
std::string mapText(const std::string& members);

// The same, loaded.
Orvane::RegisterMap mapOf(const std::string& members, const Orvane::MapOptions& options = {});

// A map of one register R at 7.1 with these members beside its address.
Orvane::RegisterMap registerOf(const std::string& members);

// What is wrong with the map of these members: one line each; empty: nothing.
std::string problemsOf(const std::string& members, const Orvane::MapOptions& options = {});

// What is wrong with a register R at 7.1 that has these members, without "map:1: registers.R".
std::string problemsOfRegister(const std::string& members);

} // namespace OrvaneTest

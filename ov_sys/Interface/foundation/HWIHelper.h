// String and sleep helpers, and the parser of device names of the form board:port.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <string>
#include <vector>

// Free functions without shared state: safe in any thread.
namespace Orvane::HWIHelper {

// Converts in place, byte by byte, with toupper and tolower of the process's C locale.
ORVANE_API void str_to_upper(std::string& text);
ORVANE_API void str_to_lower(std::string& text);

// Whether `text` begins with `prefix`; an empty prefix always matches.
ORVANE_API bool start_with(std::string text, std::string prefix);

// Splits a device name at its only ":" into the upper-cased board name, which may be empty, and the port
// number, any int. The number may have leading white space and a sign and ends at its first non-digit.
// Throws Exceptions::InvalidName with the upper-cased name when there is no ":" or more than one, when
// nothing follows it, or when no int can be read there; the last also writes "Invalid port" to the standard
// error stream. `board` is set as soon as the ":" is accepted, `port` only on success.
ORVANE_API void splitBoardSNPort(std::string name, std::string& board, int& port);

// Whether splitBoardSNPort() accepts `name`. Writes nothing.
ORVANE_API bool isDeviceName(std::string name);

// Blocks the calling thread for `ms` milliseconds, whatever signals arrive. The microseconds are counted in
// 32 unsigned bits and wrap beyond them.
ORVANE_API void mSleep(int ms);

// The non-empty pieces of `text` between the delimiters. The search goes on one character behind the start of
// each delimiter, however long that is: a::b at "::" gives a and :b. An empty delimiter gives no pieces.
// Covers the first INT_MAX bytes of `text`.
ORVANE_API std::vector<std::string> split(std::string text, std::string delimiter);

} // namespace Orvane::HWIHelper

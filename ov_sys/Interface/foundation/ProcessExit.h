// Tells the exit of the process from the unloading of the library.
#pragma once

namespace Orvane::ProcessExit {

// Lets begun() notice an exit. To be called while the program runs, that is after the loading of the
// libraries that it is linked with; once is enough. Any thread; throws nothing.
void watch() noexcept;

// For destructors of static objects: whether they run because the process exits, and not because the
// library is unloaded. False without watch().
bool begun() noexcept;

} // namespace Orvane::ProcessExit

// The options that every verb on registers has.
#pragma once

#include "tools/orvane/board/Places.h"
#include "tools/orvane/board/RegisterAddress.h"
#include "tools/orvane/cli/Verb.h"

#include <string>

namespace OrvaneTool {

struct RegisterOptions {
    std::string device; // one or more, as written
    std::string phy;    // likewise
    unsigned jobs = 64; // boards at a time
    bool c22 = false;
    bool ext32 = false;
    bool routed = false;
    bool direct = false;
    unsigned step = 0; // 0: the space's own

    Space space() const { return c22 ? Space::C22 : ext32 ? Space::Ext32 : Space::C45; }
    Places places(Context& context) const { return {context, device, phy, jobs}; }
    // Distance of neighbouring registers in a range: words of 4 bytes in the 32-bit extension.
    std::uint32_t distance() const { return step > 0 ? step : ext32 ? 4 : 1; }
};

// The arguments DEVICE and PHY, and the options for how registers are named and reached.
void addRegisterOptions(CLI::App& verb, Context& context, RegisterOptions& options);

// Of those, the register space alone, and what is said about many boards.
void addSpaceOptions(CLI::App& verb, RegisterOptions& options);
void addJobs(CLI::App& verb, unsigned& jobs);
void addDryRun(CLI::App& verb, bool& dryRun);

} // namespace OrvaneTool

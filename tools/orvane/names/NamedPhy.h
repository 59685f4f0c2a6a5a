// A PHY that a command reaches by addresses and names.
#pragma once

#include "tools/orvane/board/Registers.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/names/KnownMaps.h"

#include <memory>
#include <string>
#include <vector>

namespace OrvaneTool {

// Opens its device by first use, or at once where maps beside the user's configuration ask for the PHY's
// identifier.
class NamedPhy {
public:
    // `options` must outlive it. Throws UsageError and Failure.
    NamedPhy(Context& context, const RegisterOptions& options);

    // What arguments mean; what is left out is told on standard error. Throws UsageError.
    std::vector<Asked> parse(const std::vector<std::string>& texts);
    std::vector<Asked> parse(const std::string& text) { return parse(std::vector<std::string>{text}); }

    // Carries out accesses of any spaces and pages, in order; the values of the reads. Throws Failure.
    std::vector<std::uint32_t> run(const std::vector<Access>& accesses);
    std::vector<std::uint32_t> read(const std::vector<Asked>& list);

    Device& device();
    const KnownMaps& maps() const { return maps_; }

private:
    std::vector<std::uint32_t> runPlain(const std::vector<Access>& accesses);
    std::vector<std::uint32_t> runPaged(const std::vector<Access>& accesses);

    Context& context_;
    const RegisterOptions& options_;
    KnownMaps maps_;
    std::unique_ptr<Device> device_;
};

// Whether one of them was named.
bool isNamed(const std::vector<Asked>& list);

// Whether fields are shown: as asked for, else on a terminal, where a map was given or something was named.
bool showsFields(const Context& context, const KnownMaps& maps, const std::vector<Asked>& list);

} // namespace OrvaneTool
